#include "core/handle_table.h"

#include <sys/socket.h>
#include <sys/un.h>

#include "ipc/server_channel.h"

namespace hos::platform {
namespace {

constexpr unsigned int kFirstHandle = 1;
constexpr unsigned int kLastHandle = NK_HANDLE_DESC_INVALID - 1;

HandleObject::Kind DetectKind(int fd) {
    int type = 0;
    socklen_t length = sizeof(type);
    if (::getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &length) != 0 || type != SOCK_SEQPACKET) {
        return HandleObject::Kind::Opaque;
    }
    int listening = 0;
    length = sizeof(listening);
    if (::getsockopt(fd, SOL_SOCKET, SO_ACCEPTCONN, &listening, &length) == 0 && listening != 0) {
        return HandleObject::Kind::Opaque;
    }
    // A channel's peer is a named server socket; the ends of an object pair are unnamed.
    sockaddr_un peer{};
    socklen_t peerLength = sizeof(peer);
    if (::getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &peerLength) == 0 &&
        peerLength > sizeof(sa_family_t) && peer.sun_path[0] != '\0') {
        return HandleObject::Kind::Channel;
    }
    return HandleObject::Kind::ObjectEnd;
}

}  // namespace

HandleObject::HandleObject(Kind kind, UniqueFd fd) : m_kind(kind), m_fd(std::move(fd)) {}

HandleObject::HandleObject(std::shared_ptr<ServerChannel> server)
    : m_kind(Kind::Server), m_server(std::move(server)) {}

HandleObject::~HandleObject() = default;

uint32_t HandleObject::NextSequence() {
    uint32_t next = ++m_sequence;
    while (next == 0) {
        next = ++m_sequence;
    }
    return next;
}

void HandleObject::OnClosed() {
    if (m_server) {
        m_server->Shutdown();
    }
}

HandleTable& HandleTable::Instance() {
    // Never destroyed: server channels' threads may still run while the process exits, and
    // must not find the table or the logger torn down under them.
    static HandleTable* const table = new HandleTable;
    return *table;
}

unsigned int HandleTable::Insert(std::shared_ptr<HandleObject> object) {
    std::lock_guard lock(m_mutex);
    for (unsigned int tries = 0; tries < kLastHandle; ++tries) {
        const unsigned int candidate = m_next;
        m_next = m_next >= kLastHandle ? kFirstHandle : m_next + 1;
        if (m_objects.find(candidate) == m_objects.end()) {
            m_objects.emplace(candidate, std::move(object));
            return candidate;
        }
    }
    return NK_INVALID_HANDLE;
}

unsigned int HandleTable::Adopt(UniqueFd fd) {
    const auto kind = DetectKind(fd.Get());
    return Insert(std::make_shared<HandleObject>(kind, std::move(fd)));
}

std::shared_ptr<HandleObject> HandleTable::Find(unsigned int handle) const {
    std::lock_guard lock(m_mutex);
    const auto found = m_objects.find(handle);
    return found != m_objects.end() ? found->second : nullptr;
}

std::shared_ptr<HandleObject> HandleTable::Remove(unsigned int handle) {
    std::lock_guard lock(m_mutex);
    const auto found = m_objects.find(handle);
    if (found == m_objects.end()) {
        return nullptr;
    }
    auto object = std::move(found->second);
    m_objects.erase(found);
    return object;
}

}  // namespace hos::platform
