#pragma once
// Picks the tree store of a service: the in-memory store with the JSON defaults for the
// non-persistent service, the SQLite store in the state directory for the others.
//
// The defaults file, unless given: defaults/msmgr.json beside the program (the build tree), else
// ../share/halcyra/hl-settingsd/msmgr.json from the program's directory (an installed tree).

#include "daemon_options.h"
#include "i_tree_store.h"

#include <memory>
#include <string>

namespace hl_settingsd {

// Throws std::runtime_error, with a text for the person, when the store can't be opened.
std::unique_ptr<ITreeStore> MakeTreeStore(const DaemonOptions& options);

// The defaults file the program uses when none is given.
std::string DefaultDefaultsFile();

}  // namespace hl_settingsd
