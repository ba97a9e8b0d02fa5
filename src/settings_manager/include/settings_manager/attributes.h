#pragma once
// The attributes of one node of a settings tree. Their meaning belongs to the settings service; the
// client only carries them. Plain value type.

namespace settings_manager {

struct Attributes {
    bool flag = false;

    friend bool operator==(const Attributes&, const Attributes&) = default;
};

}  // namespace settings_manager
