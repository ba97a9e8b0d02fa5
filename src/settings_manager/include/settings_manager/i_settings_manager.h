#pragma once
// One connection to a settings service, seen through its six narrow interfaces. Each getter hands out
// the same object under another interface (sharing its ownership) and returns 0, or a negative code
// when the object isn't owned by a shared_ptr. Created by the creators of creators.h.

#include <settings_manager/i_settings_creator.h>
#include <settings_manager/i_settings_deleter.h>
#include <settings_manager/i_settings_getter.h>
#include <settings_manager/i_settings_setter.h>
#include <settings_manager/i_settings_update_subscriber.h>
#include <settings_manager/i_settings_value_setter.h>

#include <cstdint>
#include <memory>

namespace settings_manager {

class ISettingsManager {
public:
    virtual ~ISettingsManager() = default;
    virtual std::int32_t GetSettingsCreator(std::shared_ptr<ISettingsCreator>& creator) = 0;
    virtual std::int32_t GetSettingsGetter(std::shared_ptr<ISettingsGetter>& getter) = 0;
    virtual std::int32_t GetSettingsValueSetter(std::shared_ptr<ISettingsValueSetter>& setter) = 0;
    virtual std::int32_t GetSettingsSetter(std::shared_ptr<ISettingsSetter>& setter) = 0;
    virtual std::int32_t GetSettingsDeleter(std::shared_ptr<ISettingsDeleter>& deleter) = 0;
    virtual std::int32_t GetSettingsUpdateSubscriber(
        std::shared_ptr<ISettingsUpdateSubscriber>& subscriber) = 0;
};

}  // namespace settings_manager
