#pragma once

#include <array>
#include <cstdint>

namespace hosipc_detail::api_v1 {

// Capacity hints for the messages of a resource provider: a plain value of 32 bytes, copied whole.
// Callers pass it all zero; nothing in the runtime reads it.
struct MessageCapacity {
    std::array<std::uint64_t, 4> values{};
};

static_assert(sizeof(MessageCapacity) == 32);

}  // namespace hosipc_detail::api_v1
