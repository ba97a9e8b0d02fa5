#pragma once
// Reads the attributes of one node, or a whole setting tree (value, attributes and children) at a
// path. Results are codes: negative on failure, and the out argument is then left as it was.

#include <settings_manager/attributes.h>
#include <settings_manager/setting.h>
#include <uvc/path.h>

#include <cstdint>

namespace settings_manager {

class ISettingsGetter {
public:
    virtual ~ISettingsGetter() = default;
    virtual std::int32_t GetAttribute(const uvc::Path& path, Attributes& attributes) const = 0;
    virtual std::int32_t GetSetting(const uvc::Path& path, Setting& setting) const = 0;
};

}  // namespace settings_manager
