#pragma once
// The files of one persistent store in its (checked) state directory, held for the life of the store:
//
//   <name>.db        the database; made with mode 0600, a looser mode on an existing file narrowed
//   <name>.db.lock   the store's lock: one daemon per store, whatever its runtime directory
//
// An existing db, -wal or -shm file must be a regular file of the effective user (not a symbolic
// link, not another user's planted file), else the store is refused. A db of 0 bytes is said aloud
// (it starts empty). The lock is an exclusive flock on the lock file, which holds the pid of its
// holder; a second daemon on the same store gets StoreInUse naming that pid.
//
// Thread: the thread that sets the service up. The destructor releases the lock.

#include <stdexcept>
#include <string>

namespace hl_settingsd {

// The store is locked by another process.
class StoreInUse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class StoreFiles {
public:
    // Takes the lock and prepares the db file of store `name` in `directory`. Throws StoreInUse, or
    // std::runtime_error when a file can't be opened or is refused.
    StoreFiles(const std::string& directory, const std::string& name);
    ~StoreFiles();
    StoreFiles(const StoreFiles&) = delete;
    StoreFiles& operator=(const StoreFiles&) = delete;

    const std::string& Db() const { return m_db; }

private:
    std::string m_db;
    int m_lock = -1;
};

}  // namespace hl_settingsd
