#include "core/value_text.h"

#include "core/tree_json.h"

#include <fmt/format.h>
#include <hl_cli/hex.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace hl_settings {

namespace {

using settings_manager::Setting;

constexpr std::array<std::string_view, 16> kTypeNames{
    "none",   "list",      "map",    "bool",  "i8", "i16", "i32", "i64",
    "double", "timestamp", "string", "bytes", "u8", "u16", "u32", "u64"};

template <typename Int>
std::optional<Setting> ParseInteger(std::string_view text, std::string& error) {
    std::string_view digits = text;
    bool negative = false;
    if (!digits.empty() && digits.front() == '-') {
        negative = true;
        digits.remove_prefix(1);
    }
    int base = 10;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        base = 16;
        digits.remove_prefix(2);
    }
    std::uint64_t magnitude = 0;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, base);
    if (digits.empty() || ec == std::errc::invalid_argument || end != digits.data() + digits.size()) {
        error = "is not an integer";
        return std::nullopt;
    }
    const auto outOfRange = [&error] {
        error = fmt::format("is out of range [{}, {}]", +std::numeric_limits<Int>::min(),
                            +std::numeric_limits<Int>::max());
        return std::nullopt;
    };
    if (ec == std::errc::result_out_of_range) {
        return outOfRange();
    }
    if constexpr (std::is_signed_v<Int>) {
        const auto limit = static_cast<std::uint64_t>(std::numeric_limits<Int>::max()) + (negative ? 1 : 0);
        if (magnitude > limit) {
            return outOfRange();
        }
        // Two's complement: the negation of the magnitude in 64 bits, then narrowed.
        const auto value =
            negative ? static_cast<std::int64_t>(0 - magnitude) : static_cast<std::int64_t>(magnitude);
        return Setting(static_cast<Int>(value));
    } else {
        if ((negative && magnitude != 0) || magnitude > std::numeric_limits<Int>::max()) {
            return outOfRange();
        }
        return Setting(static_cast<Int>(magnitude));
    }
}

std::optional<Setting> ParseDouble(std::string_view text, std::string& error) {
    const std::string copy(text);
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(copy.c_str(), &end);
    if (copy.empty() || end != copy.c_str() + copy.size() || errno == ERANGE) {
        error = "is not a double";
        return std::nullopt;
    }
    return Setting(value);
}

std::optional<Setting> ParseBytes(std::string_view text, std::string& error) {
    auto bytes = hl::cli::ParseHex(text);
    if (!bytes) {
        error = "is not hexadecimal bytes (pairs of hex digits, spaces or colons between them)";
        return std::nullopt;
    }
    return Setting(uvc::Bytes(bytes->begin(), bytes->end()));
}

std::optional<Setting> RequireEmpty(std::string_view text, Setting value, std::string& error) {
    if (!text.empty()) {
        error = "must be empty for this type";
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::optional<std::size_t> TypeFromName(std::string_view name) {
    for (std::size_t i = 0; i < kTypeNames.size(); ++i) {
        if (kTypeNames[i] == name) {
            return i;
        }
    }
    if (name == "json") {
        return kJsonType;
    }
    return std::nullopt;
}

std::string TypeName(std::size_t index) {
    return index < kTypeNames.size() ? std::string(kTypeNames[index]) : std::string("invalid");
}

std::optional<Setting> ParseValue(std::size_t type, std::string_view text, std::string& error) {
    switch (type) {
        case uvc::IndexNone:
            return RequireEmpty(text, Setting(), error);
        case uvc::IndexList:
            return RequireEmpty(text, Setting(settings_manager::SettingList{}), error);
        case uvc::IndexMap:
            return RequireEmpty(text, Setting(settings_manager::SettingMap{}), error);
        case uvc::IndexBool:
            if (text == "true" || text == "1") {
                return Setting(true);
            }
            if (text == "false" || text == "0") {
                return Setting(false);
            }
            error = "is not a bool (true or false)";
            return std::nullopt;
        case uvc::IndexI8:
            return ParseInteger<std::int8_t>(text, error);
        case uvc::IndexI16:
            return ParseInteger<std::int16_t>(text, error);
        case uvc::IndexI32:
            return ParseInteger<std::int32_t>(text, error);
        case uvc::IndexI64:
            return ParseInteger<std::int64_t>(text, error);
        case uvc::IndexDouble:
            return ParseDouble(text, error);
        case uvc::IndexTimestamp: {
            auto number = ParseInteger<std::uint64_t>(text, error);
            if (!number) {
                return std::nullopt;
            }
            return Setting(hos::rtl::Timestamp{std::get<std::uint64_t>(*number)});
        }
        case uvc::IndexString:
            return Setting(std::string(text));
        case uvc::IndexBytes:
            return ParseBytes(text, error);
        case uvc::IndexU8:
            return ParseInteger<std::uint8_t>(text, error);
        case uvc::IndexU16:
            return ParseInteger<std::uint16_t>(text, error);
        case uvc::IndexU32:
            return ParseInteger<std::uint32_t>(text, error);
        case uvc::IndexU64:
            return ParseInteger<std::uint64_t>(text, error);
        case kJsonType: {
            const auto document = nlohmann::json::parse(text, nullptr, false);
            if (document.is_discarded()) {
                error = "is not a JSON document";
                return std::nullopt;
            }
            return SettingFromPlainJson(document, error);
        }
        default:
            error = "has an unknown type";
            return std::nullopt;
    }
}

std::string ValueText(const Setting& setting) {
    if (setting.valueless_by_exception()) {
        return "invalid";
    }
    return std::visit(
        [](const auto& value) -> std::string {
            using V = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<V, uvc_sm::None>) {
                return "none";
            } else if constexpr (std::is_same_v<V, settings_manager::SettingList>) {
                return fmt::format("[{} element{}]", value.size(), value.size() == 1 ? "" : "s");
            } else if constexpr (std::is_same_v<V, settings_manager::SettingMap>) {
                return fmt::format("{{{} entr{}}}", value.size(), value.size() == 1 ? "y" : "ies");
            } else if constexpr (std::is_same_v<V, bool>) {
                return value ? "true" : "false";
            } else if constexpr (std::is_same_v<V, hos::rtl::Timestamp>) {
                return std::to_string(value.value);
            } else if constexpr (std::is_same_v<V, std::string>) {
                return value;
            } else if constexpr (std::is_same_v<V, uvc::Bytes>) {
                return fmt::format("{:02x}", fmt::join(value, " "));
            } else if constexpr (std::is_same_v<V, double>) {
                return fmt::format("{}", value);
            } else {
                return std::to_string(+value);
            }
        },
        setting.GetValue());
}

}  // namespace hl_settings
