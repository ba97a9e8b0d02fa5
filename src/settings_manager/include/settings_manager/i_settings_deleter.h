#pragma once
// Deletes the setting tree at a path. Result: a code, negative on failure.

#include <uvc/path.h>

#include <cstdint>

namespace settings_manager {

class ISettingsDeleter {
public:
    virtual ~ISettingsDeleter() = default;
    virtual std::int32_t DeleteSetting(const uvc::Path& path) = 0;
};

}  // namespace settings_manager
