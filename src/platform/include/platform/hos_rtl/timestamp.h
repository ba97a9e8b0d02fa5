// A point in time of the platform, 8 bytes. Its contents belong to the platform: code above it only
// stores, compares and moves the 8 bytes.
#pragma once

#include <cstdint>

namespace hos::rtl {

struct Timestamp {
    std::uint64_t value = 0;

    friend bool operator==(const Timestamp&, const Timestamp&) = default;
};

static_assert(sizeof(Timestamp) == 8);

}  // namespace hos::rtl
