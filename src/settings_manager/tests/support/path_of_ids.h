#pragma once

#include <uvc/path.h>

#include <initializer_list>

namespace settings_manager::testing {

// The path of `ids`, from the root down.
inline uvc::Path P(std::initializer_list<uvc::Id> ids) {
    uvc::Path path;
    for (const auto& id : ids) {
        path.Append(id);
    }
    return path;
}

}  // namespace settings_manager::testing
