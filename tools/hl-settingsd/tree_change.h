#pragma once
// One change of a settings tree, as SettingsTree plans it and a tree store commits it: the node at
// `at` with its whole subtree is replaced by `subtree` (Replace), removed from its map (Remove), or
// gets a new attribute flag and keeps everything else (Flag). Plain value type.

#include <settings_manager/setting.h>
#include <uvc/path.h>

namespace hl_settingsd {

struct TreeChange {
    enum class Kind { Replace, Remove, Flag };

    Kind kind = Kind::Replace;
    uvc::Path at;
    settings_manager::Setting subtree;  // Replace only
    bool flag = false;                  // Flag only
};

}  // namespace hl_settingsd
