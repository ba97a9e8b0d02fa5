#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace hosipc_detail::idl_traits {

// A string literal usable as a template argument, so that a method's name is part of its description.
template <std::size_t N>
struct FixedString {
    constexpr FixedString(const char (&text)[N]) { std::copy_n(text, N, value); }
    constexpr std::string_view View() const { return {value, N - 1}; }

    char value[N]{};
};

}  // namespace hosipc_detail::idl_traits
