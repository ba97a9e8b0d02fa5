#pragma once
// The id of one update subscription, as the settings service hands it out. Zero means no
// subscription. Compares by its number and prints as a plain decimal number.

#include <fmt/format.h>

#include <compare>
#include <cstdint>

namespace settings_manager {

struct SubscriptionId {
    std::uint64_t value = 0;

    friend auto operator<=>(const SubscriptionId&, const SubscriptionId&) = default;
};

}  // namespace settings_manager

template <>
struct fmt::formatter<settings_manager::SubscriptionId> : fmt::formatter<std::uint64_t> {
    template <typename FormatContext>
    auto format(const settings_manager::SubscriptionId& sid, FormatContext& context) const {
        return fmt::formatter<std::uint64_t>::format(sid.value, context);
    }
};
