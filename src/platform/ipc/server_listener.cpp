#include "ipc/server_listener.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include <diagnostics/log.h>
#include <diagnostics/log_rate_limiter.h>
#include <platform/nk_result.h>
#include <platform/runtime_directory.h>

#include "ipc/packet_io.h"

namespace hos::platform {
namespace {

using hos::logger::LogLevel;

sockaddr_un MakeAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

// True when a live server answers on `path`.
bool IsServed(const sockaddr_un& address) {
    UniqueFd probe = MakeSeqPacketSocket();
    if (!probe.IsValid()) {
        return false;
    }
    const int rc = ::connect(probe.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    return rc == 0 || errno == EAGAIN;
}

}  // namespace

std::unique_ptr<ServerListener> ServerListener::Bind(const std::string& name, uid_t allowedUid, int& rc) {
    const auto root = runtime_directory::Ensure();
    if (!root) {
        rc = NK_EFAIL;
        return nullptr;
    }
    const auto path = runtime_directory::ServerSocketPath(*root, name);
    if (!path) {
        rc = NK_EINVAL;
        return nullptr;
    }
    UniqueFd listenFd = MakeSeqPacketSocket();
    if (!listenFd.IsValid()) {
        HL_LOG(LogLevel::Error, "Server {}: cannot make a socket: {}", name, std::strerror(errno));
        rc = NK_ENOMEM;
        return nullptr;
    }
    const sockaddr_un address = MakeAddress(*path);
    if (::bind(listenFd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        if (errno != EADDRINUSE) {
            HL_LOG(LogLevel::Error, "Server {}: cannot bind {}: {}", name, *path, std::strerror(errno));
            rc = NK_EFAIL;
            return nullptr;
        }
        // Only a socket of our own user is taken over: a file another user planted stays as it is.
        struct stat existing {};
        if (::lstat(path->c_str(), &existing) != 0 || !S_ISSOCK(existing.st_mode) ||
            existing.st_uid != ::geteuid()) {
            HL_LOG(LogLevel::Error, "Server {}: {} is not a socket of uid {}; it is left alone", name, *path,
                   ::geteuid());
            rc = NK_EACCESS;
            return nullptr;
        }
        if (IsServed(address)) {
            HL_LOG(LogLevel::Error, "Server {}: the name is in use by a live server", name);
            rc = NK_EBUSY;
            return nullptr;
        }
        // The socket file of a server that has died: take the name over.
        ::unlink(path->c_str());
        if (::bind(listenFd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
            HL_LOG(LogLevel::Error, "Server {}: cannot bind {}: {}", name, *path, std::strerror(errno));
            rc = errno == EADDRINUSE ? NK_EBUSY : NK_EFAIL;
            return nullptr;
        }
    }
    ::chmod(path->c_str(), 0600);
    struct stat info {};
    ::lstat(path->c_str(), &info);
    if (::listen(listenFd.Get(), 128) != 0) {
        HL_LOG(LogLevel::Error, "Server {}: cannot listen: {}", name, std::strerror(errno));
        ::unlink(path->c_str());
        rc = NK_EFAIL;
        return nullptr;
    }
    rc = NK_EOK;
    return std::unique_ptr<ServerListener>(
        new ServerListener(name, *path, info.st_ino, allowedUid, std::move(listenFd)));
}

ServerListener::ServerListener(std::string name, std::string path, ino_t inode, uid_t allowedUid, UniqueFd fd)
    : m_name(std::move(name)),
      m_path(std::move(path)),
      m_inode(inode),
      m_allowedUid(allowedUid),
      m_fd(std::move(fd)) {}

ServerListener::~ServerListener() {
    Close();
}

void ServerListener::Close() {
    if (!m_fd.IsValid()) {
        return;
    }
    struct stat info {};
    if (::lstat(m_path.c_str(), &info) == 0 && info.st_ino == m_inode) {
        ::unlink(m_path.c_str());
    }
    m_fd.Reset();
}

std::vector<ServerListener::Peer> ServerListener::Accept() {
    std::vector<Peer> accepted;
    for (;;) {
        UniqueFd fd(::accept4(m_fd.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!fd.IsValid()) {
            if (errno == EINTR || errno == ECONNABORTED) {
                continue;
            }
            if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
                // The client stays in the backlog; pausing keeps the pump from spinning on it. The
                // condition lasts until descriptors come free: said once a second at most.
                static hl::diagnostics::LogRateLimiter limiter(1, std::chrono::seconds(1));
                const int error = errno;
                if (const auto admission = limiter.Admit()) {
                    HL_LOG(LogLevel::Error, "Server {}: cannot accept a client: {}{}", m_name,
                           std::strerror(error), admission.Note());
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            }
            break;
        }
        ucred credentials{};
        socklen_t length = sizeof(credentials);
        if (::getsockopt(fd.Get(), SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) {
            static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
            if (const auto admission = limiter.Admit()) {
                HL_LOG(LogLevel::Warning, "Server {}: refusing a peer whose credentials are unknown{}",
                       m_name, admission.Note());
            }
            continue;
        }
        Peer peer;
        peer.fd = std::move(fd);
        peer.uid = credentials.uid;
        peer.pid = credentials.pid;
        if (credentials.uid != m_allowedUid) {
            static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
            if (const auto admission = limiter.Admit(static_cast<uint64_t>(credentials.pid))) {
                HL_LOG(LogLevel::Warning,
                       "Server {}: refusing a peer of uid {} (pid {}): only uid {} may connect{}", m_name,
                       credentials.uid, credentials.pid, m_allowedUid, admission.Note());
            }
            // Kept until its first frame has been read and refused: closing a socket with unread
            // data would reset the peer before it could read why.
            peer.refused = true;
        }
        TuneSocketBuffers(peer.fd.Get());
        accepted.push_back(std::move(peer));
    }
    return accepted;
}

}  // namespace hos::platform
