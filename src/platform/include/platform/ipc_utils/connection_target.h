// Where a published interface type is served: the answer of FindConnectionTargetForType.
//
// An optional-like record: when `found` is false the two strings are empty and mean nothing.
// Plain data, freely copied.
#pragma once

#include <cstddef>

namespace shared::ipc_utils {

struct ConnectionTarget {
    static constexpr std::size_t kNameCapacity = 1024;

    char server[kNameCapacity] = {};   // `server` of KnCmConnect, zero-terminated
    char service[kNameCapacity] = {};  // the name to resolve there, zero-terminated
    bool found = false;

    bool has_value() const { return found; }
    explicit operator bool() const { return found; }
};

}  // namespace shared::ipc_utils
