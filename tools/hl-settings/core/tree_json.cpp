#include "core/tree_json.h"

#include "core/quoted_text.h"
#include "core/value_text.h"

#include <settings_manager/meta/path_id_rules.h>
#include <uvc/path_text.h>

#include <fmt/format.h>

#include <limits>
#include <type_traits>

namespace hl_settings {

using settings_manager::Setting;

nlohmann::json TypedJson(const Setting& setting) {
    nlohmann::json node = nlohmann::json::object();
    node["type"] = TypeName(setting.index());
    node["flag"] = setting.attributes.flag;
    if (const auto* text = std::get_if<std::string>(&setting.GetValue()); text != nullptr && !IsUtf8(*text)) {
        node["bytes"] = ValueText(Setting(uvc::Bytes(text->begin(), text->end())));
    }
    if (setting.valueless_by_exception()) {
        node["value"] = nullptr;
        return node;
    }
    node["value"] = std::visit(
        [&setting](const auto& value) -> nlohmann::json {
            using V = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<V, uvc_sm::None>) {
                return nullptr;
            } else if constexpr (std::is_same_v<V, settings_manager::SettingList>) {
                nlohmann::json children = nlohmann::json::array();
                for (const Setting& child : value) {
                    children.push_back(TypedJson(child));
                }
                return children;
            } else if constexpr (std::is_same_v<V, settings_manager::SettingMap>) {
                nlohmann::json children = nlohmann::json::object();
                for (const auto& [key, child] : value) {
                    children[key] = TypedJson(child);
                }
                return children;
            } else if constexpr (std::is_same_v<V, hos::rtl::Timestamp>) {
                return value.value;
            } else if constexpr (std::is_same_v<V, uvc::Bytes>) {
                return ValueText(setting);
            } else if constexpr (std::is_same_v<V, std::int8_t> || std::is_same_v<V, std::uint8_t>) {
                return +value;  // a number, not a character
            } else {
                return value;
            }
        },
        setting.GetValue());
    return node;
}

std::string JsonText(const nlohmann::json& document, int indent) {
    return document.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::optional<Setting> SettingFromPlainJson(const nlohmann::json& document, std::string& error) {
    switch (document.type()) {
        case nlohmann::json::value_t::null:
            return Setting();
        case nlohmann::json::value_t::boolean:
            return Setting(document.get<bool>());
        case nlohmann::json::value_t::string:
            return Setting(document.get<std::string>());
        case nlohmann::json::value_t::number_integer:
            return Setting(document.get<std::int64_t>());
        case nlohmann::json::value_t::number_unsigned: {
            const auto value = document.get<std::uint64_t>();
            if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
                return Setting(static_cast<std::int64_t>(value));
            }
            return Setting(value);
        }
        case nlohmann::json::value_t::number_float:
            return Setting(document.get<double>());
        case nlohmann::json::value_t::array: {
            settings_manager::SettingList list;
            for (const auto& element : document) {
                auto child = SettingFromPlainJson(element, error);
                if (!child) {
                    return std::nullopt;
                }
                list.push_back(std::move(*child));
            }
            return Setting(std::move(list));
        }
        case nlohmann::json::value_t::object: {
            settings_manager::SettingMap map;
            for (const auto& [key, element] : document.items()) {
                const uvc::IdState state =
                    uvc::aux::CheckId(uvc::Id(key), settings_manager::meta::GetIdSpecification());
                if (state != uvc::IdStateOk) {
                    error = fmt::format("has the key \"{}\", which is no valid name (id state {})", key,
                                        static_cast<unsigned>(state));
                    return std::nullopt;
                }
                auto child = SettingFromPlainJson(element, error);
                if (!child) {
                    return std::nullopt;
                }
                map.emplace(key, std::move(*child));
            }
            return Setting(std::move(map));
        }
        default:
            error = "holds a JSON value that has no settings type";
            return std::nullopt;
    }
}

}  // namespace hl_settings
