#pragma once
// Writes the attributes of one node, or a whole setting tree with its attributes, at a path.
// Results are codes: negative on failure.

#include <settings_manager/attributes.h>
#include <settings_manager/setting.h>
#include <uvc/path.h>

#include <cstdint>

namespace settings_manager {

class ISettingsSetter {
public:
    virtual ~ISettingsSetter() = default;
    virtual std::int32_t SetAttribute(const uvc::Path& path, const Attributes& attributes) = 0;
    virtual std::int32_t SetSetting(const uvc::Path& path, const Setting& setting) = 0;
};

}  // namespace settings_manager
