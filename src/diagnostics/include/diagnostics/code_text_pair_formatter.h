#pragma once
// fmt support for a pair of a result code and a text: "{}" prints fdn::hcax::ResultCodeText of the
// code and drops the text on purpose, so such a result shows in logs as "Not found = 0x8000004c".

#include <diagnostics/result_code.h>

#include <fmt/format.h>

#include <string>
#include <utility>

template <>
struct fmt::formatter<std::pair<int, std::string>> : fmt::formatter<std::string> {
    template <typename FormatContext>
    auto format(const std::pair<int, std::string>& result, FormatContext& context) const {
        return fmt::formatter<std::string>::format(fdn::hcax::ResultCodeText(result.first), context);
    }
};
