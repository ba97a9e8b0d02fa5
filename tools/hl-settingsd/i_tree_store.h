#pragma once
// Where a settings service keeps its tree between requests: Load gives the tree at start, Commit makes
// one planned change lasting, all of it or none of it. A negative result of Commit means nothing was
// changed (the service then leaves its tree in memory as it was and answers that code).
//
// Thread: the service's serving thread only.

#include "tree_change.h"

#include <settings_manager/setting.h>

#include <cstdint>

namespace hl_settingsd {

class ITreeStore {
public:
    virtual ~ITreeStore() = default;
    // The tree as stored (a map at the root); throws std::runtime_error when it can't be read.
    virtual settings_manager::Setting Load() = 0;
    virtual std::int32_t Commit(const TreeChange& change) = 0;
};

}  // namespace hl_settingsd
