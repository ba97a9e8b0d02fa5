#pragma once
// How a path prints in a log line: its text under the settings id rules, or a marker saying why it
// has none. Including this header lets fmt format a uvc::Path ("{}" gives PathToStr).

#include <uvc/path.h>

#include <fmt/format.h>

#include <string>

namespace settings_manager {

// The text form of path; "<path to str fail: state = N>" for a path the text form refuses,
// "<path to str fail: '<text>'>" if an exception passes. Never throws.
std::string PathToStr(const uvc::Path& path) noexcept;

}  // namespace settings_manager

template <>
struct fmt::formatter<uvc::Path> : fmt::formatter<std::string> {
    template <typename FormatContext>
    auto format(const uvc::Path& path, FormatContext& context) const {
        return fmt::formatter<std::string>::format(settings_manager::PathToStr(path), context);
    }
};
