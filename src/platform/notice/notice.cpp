#include "notice/notice.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include <diagnostics/log.h>
#include <platform/nk_message.h>

#include "core/deadline.h"
#include "core/handle_table.h"
#include "ipc/frame.h"
#include "ipc/packet_io.h"

namespace hos::platform {
namespace {

using hos::logger::LogLevel;

struct Watched {
    unsigned int handle;
    std::shared_ptr<HandleObject> object;
    unsigned int mask;
    unsigned long eventId;
};

}  // namespace

std::unique_ptr<Notice> Notice::Create() {
    UniqueFd dropFd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    UniqueFd refreshFd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!dropFd.IsValid() || !refreshFd.IsValid()) {
        return nullptr;
    }
    return std::unique_ptr<Notice>(new Notice(std::move(dropFd), std::move(refreshFd)));
}

Notice::Notice(UniqueFd dropFd, UniqueFd refreshFd)
    : m_dropFd(std::move(dropFd)), m_refreshFd(std::move(refreshFd)) {}

void Notice::Refresh() {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_refreshFd.Get(), &one, sizeof(one));
}

int Notice::Subscribe(unsigned int handle, unsigned int mask, unsigned long eventId) {
    auto object = HandleTable::Instance().Find(handle);
    if (!object || object->Fd() < 0) {
        return NK_EBADHANDLE;
    }
    {
        std::lock_guard lock(m_mutex);
        m_subscriptions[handle] = Subscription{std::move(object), mask, eventId, false};
    }
    Refresh();
    return NK_EOK;
}

int Notice::UnsubscribeObject(unsigned int handle) {
    {
        std::lock_guard lock(m_mutex);
        if (m_subscriptions.erase(handle) == 0) {
            return NK_ENOTFOUND;
        }
    }
    Refresh();
    return NK_EOK;
}

int Notice::UnsubscribeEvent(unsigned long eventId) {
    size_t removed = 0;
    {
        std::lock_guard lock(m_mutex);
        for (auto it = m_subscriptions.begin(); it != m_subscriptions.end();) {
            if (it->second.eventId == eventId) {
                it = m_subscriptions.erase(it);
                ++removed;
            } else {
                ++it;
            }
        }
    }
    if (removed == 0) {
        return NK_ENOTFOUND;
    }
    Refresh();
    return NK_EOK;
}

int Notice::DropAndWake() {
    m_dropped = true;
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_dropFd.Get(), &one, sizeof(one));
    return NK_EOK;
}

unsigned int Notice::DrainEvents(int fd, bool& closed) {
    unsigned int raised = 0;
    std::vector<uint8_t> buffer;
    std::vector<UniqueFd> fds;
    for (;;) {
        const ReadResult read = ReadPacket(fd, buffer, fds);
        if (read.status == ReadStatus::WouldBlock) {
            return raised;
        }
        if (read.status == ReadStatus::Closed || read.status == ReadStatus::Failed) {
            closed = true;
            return raised;
        }
        ParsedFrame frame;
        std::string reason;
        if (read.status != ReadStatus::Packet ||
            ParseFrame(std::span(buffer.data(), read.length), fds.size(), frame, reason) != NK_EOK ||
            frame.header.kind != FrameKind::Event) {
            HL_LOG(LogLevel::Warning, "Notice: ignored a frame that is not an event {}", reason);
            continue;
        }
        auto mask = static_cast<unsigned int>(frame.header.result);
        if ((mask & KN_NOTICE_EVENT_CLOSED) != 0) {
            // Only the platform says that the other end has gone; a peer's claim is refused.
            HL_LOG(LogLevel::Warning,
                   "Notice: refused an event frame that raises the closed event (mask {:#x})", mask);
            mask &= ~KN_NOTICE_EVENT_CLOSED;
        }
        raised |= mask;
    }
}

int Notice::GetEvents(unsigned long timeoutMs, unsigned long maxCount, EventDesc* events,
                      unsigned long* count) {
    if (count == nullptr || (maxCount > 0 && events == nullptr)) {
        return NK_EINVAL;
    }
    *count = 0;
    const Deadline deadline = Deadline::FromTimeoutMs(timeoutMs);
    std::vector<Watched> watched;
    std::vector<pollfd> polled;
    for (;;) {
        if (m_dropped) {
            return NK_ENOTFOUND;
        }
        watched.clear();
        polled.clear();
        polled.push_back({m_dropFd.Get(), POLLIN, 0});
        polled.push_back({m_refreshFd.Get(), POLLIN, 0});
        {
            std::lock_guard lock(m_mutex);
            for (const auto& [handle, subscription] : m_subscriptions) {
                if (subscription.closedSeen) {
                    continue;
                }
                const bool readsEvents = subscription.object->GetKind() == HandleObject::Kind::ObjectEnd;
                polled.push_back(
                    {subscription.object->Fd(), static_cast<short>(readsEvents ? POLLIN : 0), 0});
                watched.push_back({handle, subscription.object, subscription.mask, subscription.eventId});
            }
        }
        const int ready = ::poll(polled.data(), polled.size(), deadline.RemainingPollMs());
        if (ready < 0) {
            if (errno == EINTR) {
                continue;
            }
            return NK_EFAIL;
        }
        if (ready == 0) {
            return NK_ETIMEOUT;
        }
        if ((polled[0].revents & POLLIN) != 0 || m_dropped) {
            return NK_ENOTFOUND;
        }
        if ((polled[1].revents & POLLIN) != 0) {
            uint64_t value = 0;
            [[maybe_unused]] const ssize_t got = ::read(m_refreshFd.Get(), &value, sizeof(value));
        }
        bool anyReady = false;
        for (size_t i = 0; i < watched.size() && *count < maxCount; ++i) {
            const short revents = polled[i + 2].revents;
            anyReady = anyReady || revents != 0;
            if (revents == 0) {
                continue;
            }
            bool closed = (revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
            unsigned int raised = 0;
            if ((revents & POLLIN) != 0) {
                raised = DrainEvents(watched[i].object->Fd(), closed);
            }
            if (closed) {
                raised |= KN_NOTICE_EVENT_CLOSED;
                std::lock_guard lock(m_mutex);
                const auto found = m_subscriptions.find(watched[i].handle);
                if (found != m_subscriptions.end() && found->second.object == watched[i].object) {
                    found->second.closedSeen = true;
                }
            }
            const unsigned int reported = raised & watched[i].mask;
            if (reported != 0) {
                events[*count] = EventDesc{watched[i].handle, reported, watched[i].eventId};
                ++*count;
            }
        }
        if (maxCount == 0) {
            for (size_t i = 0; i < watched.size() && !anyReady; ++i) {
                anyReady = polled[i + 2].revents != 0;
            }
        }
        if (*count > 0 || (maxCount == 0 && anyReady)) {
            return NK_EOK;
        }
    }
}

}  // namespace hos::platform
