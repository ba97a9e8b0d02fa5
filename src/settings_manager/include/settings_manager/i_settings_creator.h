#pragma once
// Creates a setting tree at a path. Results are codes: negative on failure. Implementations say on
// which threads they may be called; SettingsManagerProxy takes any thread.

#include <settings_manager/setting.h>
#include <uvc/path.h>

#include <cstdint>

namespace settings_manager {

class ISettingsCreator {
public:
    virtual ~ISettingsCreator() = default;
    virtual std::int32_t CreateSetting(const uvc::Path& path, const Setting& setting) = 0;
};

}  // namespace settings_manager
