// What a handle stands for: a client channel, a server channel, one end of an object, or an
// opaque descriptor received from a peer.
//
// Ownership: shared by the handle table and by whoever uses it at the moment (a call, a notice's
// subscription), so a handle closed on one thread stays valid for a call running on another; the
// descriptor is closed when the last user lets go.
// Thread: `CallMutex()` serialises calls on one channel; the rest is immutable after construction.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

#include "core/unique_fd.h"

namespace hos::platform {

class ServerChannel;

class HandleObject {
public:
    enum class Kind { Channel, Server, ObjectEnd, Opaque };

    HandleObject(Kind kind, UniqueFd fd);
    explicit HandleObject(std::shared_ptr<ServerChannel> server);
    ~HandleObject();

    HandleObject(const HandleObject&) = delete;
    HandleObject& operator=(const HandleObject&) = delete;

    Kind GetKind() const { return m_kind; }
    // The socket of a channel, object end or opaque handle; -1 for a server channel.
    int Fd() const { return m_fd.Get(); }
    const std::shared_ptr<ServerChannel>& Server() const { return m_server; }
    std::mutex& CallMutex() { return m_callMutex; }
    // Sequence number for the next frame sent on this channel; never 0.
    uint32_t NextSequence();
    // Called when the handle is closed: a server channel stops at once, others wait for the
    // last user.
    void OnClosed();

private:
    Kind m_kind;
    UniqueFd m_fd;
    std::shared_ptr<ServerChannel> m_server;
    std::mutex m_callMutex;
    std::atomic<uint32_t> m_sequence{0};
};

}  // namespace hos::platform
