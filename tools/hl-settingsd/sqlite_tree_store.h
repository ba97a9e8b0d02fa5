#pragma once
// The store of a persistent service: an SQLite database in WAL mode with synchronous=FULL, one row
// per node of the tree, so that a committed change survives a crash of the process or the machine.
//
//   nodes(path TEXT PRIMARY KEY, value BLOB, flag INTEGER) WITHOUT ROWID
//     path:  the node's path text ("locale/language/"; the root is the empty text)
//     value: the node's value block in the raw item form (index, aux, payload)
//     flag:  the node's attribute flag, 0 or 1
//   meta(key TEXT PRIMARY KEY, value TEXT): "format" = "1"
//
// Each Commit is one transaction: the rows of the changed subtree are deleted and the new ones
// inserted (or one flag updated), all or nothing. The files are checked, locked and made by StoreFiles
// (store_files.h), which the store owns; SQLite gives its -wal and -shm files the db's mode.
//
// Thread: the service's serving thread only. The destructor closes the database.

#include "i_tree_store.h"
#include "store_files.h"

#include <memory>

#include <string>

struct sqlite3;

namespace hl_settingsd {

class SqliteTreeStore final : public ITreeStore {
public:
    // Opens or makes the database of the files; throws std::runtime_error when it can't.
    explicit SqliteTreeStore(std::unique_ptr<StoreFiles> files);
    ~SqliteTreeStore() override;
    SqliteTreeStore(const SqliteTreeStore&) = delete;
    SqliteTreeStore& operator=(const SqliteTreeStore&) = delete;

    // Throws std::runtime_error when the rows don't make a tree (a damaged store).
    settings_manager::Setting Load() override;
    std::int32_t Commit(const TreeChange& change) override;

private:
    bool Execute(const char* sql);
    bool DeleteSubtree(const std::string& pathText);

    std::unique_ptr<StoreFiles> m_files;
    std::string m_file;
    sqlite3* m_db = nullptr;
};

}  // namespace hl_settingsd
