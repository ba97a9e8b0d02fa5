#include "json_defaults.h"

#include <settings_manager/meta/path_id_rules.h>
#include <uvc/path_text.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace hl_settingsd {

namespace {

using settings_manager::Setting;
using settings_manager::SettingList;
using settings_manager::SettingMap;

Setting FromJson(const nlohmann::json& value, const std::string& where, const std::string& source) {
    switch (value.type()) {
        case nlohmann::json::value_t::object: {
            SettingMap map;
            for (const auto& [key, child] : value.items()) {
                const uvc::Id id = key;
                if (uvc::aux::CheckId(id, settings_manager::meta::GetIdSpecification()) != uvc::IdStateOk) {
                    throw std::runtime_error(source + ": '" + where + key + "' is not a valid setting name");
                }
                map.emplace(key, FromJson(child, where + key + "/", source));
            }
            return map;
        }
        case nlohmann::json::value_t::array: {
            SettingList list;
            for (std::size_t i = 0; i < value.size(); ++i) {
                list.push_back(FromJson(value[i], where + std::to_string(i) + "/", source));
            }
            return list;
        }
        case nlohmann::json::value_t::string:
            return value.get<std::string>();
        case nlohmann::json::value_t::boolean:
            return value.get<bool>();
        case nlohmann::json::value_t::number_integer:
            return value.get<std::int64_t>();
        case nlohmann::json::value_t::number_unsigned: {
            const auto number = value.get<std::uint64_t>();
            if (number <= static_cast<std::uint64_t>(INT64_MAX)) {
                return static_cast<std::int64_t>(number);
            }
            return number;
        }
        case nlohmann::json::value_t::number_float:
            return value.get<double>();
        case nlohmann::json::value_t::null:
            return Setting{};
        default:
            throw std::runtime_error(source + ": '" + where + "' holds a value of no setting type");
    }
}

}  // namespace

Setting ParseJsonDefaults(const std::string& text, const std::string& source) {
    nlohmann::json document;
    try {
        document = nlohmann::json::parse(text);
    } catch (const nlohmann::json::exception& e) {
        throw std::runtime_error(source + ": not JSON: " + e.what());
    }
    if (!document.is_object()) {
        throw std::runtime_error(source + ": the defaults must be one JSON object");
    }
    return FromJson(document, "", source);
}

Setting ReadJsonDefaults(const std::string& file) {
    std::ifstream in(file);
    if (!in) {
        throw std::runtime_error(file + ": can't be read");
    }
    std::ostringstream text;
    text << in.rdbuf();
    return ParseJsonDefaults(text.str(), file);
}

}  // namespace hl_settingsd
