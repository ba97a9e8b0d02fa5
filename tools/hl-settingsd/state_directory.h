#pragma once
// Where the persistent stores live: the --state-dir option if given, else $XDG_STATE_HOME/halcyra
// (an absolute XDG_STATE_HOME only), else $HOME/.local/state/halcyra. The directory is created with
// mode 0700 when missing (its parents with the usual mode).

#include <optional>
#include <string>

namespace hl_settingsd {

// Throws std::runtime_error when no directory can be named or made.
std::string PrepareStateDirectory(const std::optional<std::string>& option);

}  // namespace hl_settingsd
