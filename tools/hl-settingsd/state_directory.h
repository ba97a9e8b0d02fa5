#pragma once
// Where the persistent stores live: the --state-dir option if given, else $XDG_STATE_HOME/halcyra
// (an absolute XDG_STATE_HOME only), else $HOME/.local/state/halcyra. The directory is created with
// mode 0700 when missing (its parents with the usual mode).
//
// It is checked as the runtime directory is: the directory itself (symbolic links on the way to it are
// followed, a link in its place is refused) must belong to the effective user and be writable by
// nobody else, so that no other user can plant, swap or remove a store's files.

#include <optional>
#include <string>

namespace hl_settingsd {

// Throws std::runtime_error when no directory can be named or made, or it fails the checks.
std::string PrepareStateDirectory(const std::optional<std::string>& option);

}  // namespace hl_settingsd
