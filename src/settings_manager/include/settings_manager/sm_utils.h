#pragma once
// Typed read of one setting value:
//
//   std::string language = utils::sm::GetSettingValue<std::string>(*getter, paths::kLocaleLanguage,
//                                                                   std::string());
//
// Reads the setting at path through getter. Returns a copy of its value when it holds the alternative
// of type T, else default. Never throws on a read failure: a failed read logs
// "SMgr GetSettingValue: can not get '{}', result = {}" at Warning, a setting of another alternative
// "SMgr GetSettingValue: '{}' wrong type, index = {}" at Warning (no conversion is attempted). T must
// be one alternative of the value variant (std::string is alternative 10). Any thread the getter
// allows.

#include <diagnostics/log.h>
#include <diagnostics/result_code.h>
#include <settings_manager/i_settings_getter.h>
#include <settings_manager/path_to_str.h>

#include <utility>
#include <variant>

namespace utils::sm {

template <typename T, typename D = T>
T GetSettingValue(const settings_manager::ISettingsGetter& getter, const uvc::Path& path, D defaultValue) {
    settings_manager::Setting setting;
    const int result = getter.GetSetting(path, setting);
    if (result < 0) {
        HL_LOG(hos::logger::LogLevel::Warning, "SMgr GetSettingValue: can not get '{}', result = {}", path,
               fdn::hcax::ResultCodeText(result));
        return T(std::move(defaultValue));
    }
    if (const T* value = std::get_if<T>(&setting.GetValue())) {
        return *value;
    }
    HL_LOG(hos::logger::LogLevel::Warning, "SMgr GetSettingValue: '{}' wrong type, index = {}", path,
           setting.index());
    return T(std::move(defaultValue));
}

}  // namespace utils::sm
