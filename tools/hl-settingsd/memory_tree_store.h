#pragma once
// The store of the non-persistent service: the tree lives in memory only and starts from the defaults
// it is given; commits change nothing outside the process.

#include "i_tree_store.h"

namespace hl_settingsd {

class MemoryTreeStore final : public ITreeStore {
public:
    explicit MemoryTreeStore(settings_manager::Setting defaults) : m_defaults(std::move(defaults)) {}

    settings_manager::Setting Load() override { return m_defaults; }
    std::int32_t Commit(const TreeChange&) override { return 0; }

private:
    settings_manager::Setting m_defaults;
};

}  // namespace hl_settingsd
