// A notice: subscriptions to handles and a wait for their events.
//
// Events of an object end arrive as Event frames on its socket; the closed event (bit 0) is seen
// when the other end's socket goes away. A wait polls the subscribed sockets together with two
// eventfds: one that DropAndWake raises for good, one that a change of subscriptions raises so
// that a running wait takes the new set.
// Ownership: subscriptions hold the handle's object, so its socket stays open while subscribed.
// Thread: all operations may run at once on several threads; the destructor must not run while
// a wait does.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>

#include <platform/kn_notice.h>

#include "core/handle_object.h"
#include "core/unique_fd.h"

namespace hos::platform {

class Notice {
public:
    // Null when the eventfds cannot be made.
    static std::unique_ptr<Notice> Create();

    int Subscribe(unsigned int handle, unsigned int mask, unsigned long eventId);
    int GetEvents(unsigned long timeoutMs, unsigned long maxCount, EventDesc* events, unsigned long* count);
    int UnsubscribeObject(unsigned int handle);
    int UnsubscribeEvent(unsigned long eventId);
    int DropAndWake();

private:
    struct Subscription {
        std::shared_ptr<HandleObject> object;
        unsigned int mask = 0;
        unsigned long eventId = 0;
        bool closedSeen = false;
    };

    Notice(UniqueFd dropFd, UniqueFd refreshFd);
    void Refresh();
    // Reads the pending event frames of an object end; sets `closed` when its peer has gone.
    static unsigned int DrainEvents(int fd, bool& closed);

    UniqueFd m_dropFd;
    UniqueFd m_refreshFd;
    std::atomic<bool> m_dropped{false};
    std::mutex m_mutex;
    std::map<unsigned int, Subscription> m_subscriptions;
};

}  // namespace hos::platform
