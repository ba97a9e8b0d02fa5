#pragma once
// Writes a value tree at a path, with cleared attributes. Result: a code, negative on failure.

#include <settings_manager/setting.h>
#include <uvc/path.h>
#include <uvc/value.h>

#include <cstdint>

namespace settings_manager {

class ISettingsValueSetter {
public:
    virtual ~ISettingsValueSetter() = default;
    virtual std::int32_t SetValue(const uvc::Path& path, const uvc::TValue<Setting>& value) = 0;
};

}  // namespace settings_manager
