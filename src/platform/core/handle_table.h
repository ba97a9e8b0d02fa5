// The process's handle table: 24-bit handle values to HandleObject.
//
// Handles are handed out from 1 upward, wrapping before 0xFFFFFF and skipping values in use.
// Thread: every operation locks the table; safe from any thread. One table per process, since
// handles are process state; it lives until the process ends.
#pragma once

#include <map>
#include <memory>
#include <mutex>

#include <platform/nk_message.h>

#include "core/handle_object.h"

namespace hos::platform {

class HandleTable {
public:
    static HandleTable& Instance();

    // Returns the new handle, or NK_INVALID_HANDLE when the table is full.
    unsigned int Insert(std::shared_ptr<HandleObject> object);
    // Takes over a descriptor received from a peer, working out what it is.
    unsigned int Adopt(UniqueFd fd);
    std::shared_ptr<HandleObject> Find(unsigned int handle) const;
    // Removes and returns the object, or null for an unknown handle.
    std::shared_ptr<HandleObject> Remove(unsigned int handle);

private:
    HandleTable() = default;

    mutable std::mutex m_mutex;
    std::map<unsigned int, std::shared_ptr<HandleObject>> m_objects;
    unsigned int m_next = 1;
};

}  // namespace hos::platform
