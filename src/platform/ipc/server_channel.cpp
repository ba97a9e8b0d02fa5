#include "ipc/server_channel.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include <diagnostics/log.h>
#include <platform/nk_result.h>
#include <platform/runtime_directory.h>

#include "ipc/message_codec.h"
#include "ipc/packet_io.h"
#include "task/task.h"

namespace hos::platform {
namespace {

using hos::logger::LogLevel;

// A client may have this many requests waiting; beyond it the pump stops reading from it.
constexpr uint32_t kMaxQueuedPerClient = 4;
// How long the pump waits to hand a refusal to a client that does not read.
constexpr uint32_t kRefusalSendMs = 100;
// Longest wait for room when replying, whatever the transport's send timeout says.
constexpr uint32_t kMaxReplySendMs = 5000;

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

std::shared_ptr<ServerChannel> ServerChannel::Open(const std::string& name, int& rc) {
    return OpenImpl(name, ::geteuid(), rc);
}

std::shared_ptr<ServerChannel> ServerChannel::OpenForTesting(const std::string& name, uid_t allowedUid,
                                                             int& rc) {
    return OpenImpl(name, allowedUid, rc);
}

std::shared_ptr<ServerChannel> ServerChannel::OpenImpl(const std::string& name, uid_t allowedUid, int& rc) {
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
    UniqueFd wakeFd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!listenFd.IsValid() || !wakeFd.IsValid()) {
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
    std::shared_ptr<ServerChannel> channel(
        new ServerChannel(name, *path, info.st_ino, allowedUid, std::move(listenFd), std::move(wakeFd)));
    channel->m_thread = std::thread([raw = channel.get()] { raw->Run(); });
    rc = NK_EOK;
    return channel;
}

ServerChannel::ServerChannel(std::string name, std::string path, ino_t inode, uid_t allowedUid,
                             UniqueFd listenFd, UniqueFd wakeFd)
    : m_name(std::move(name)),
      m_path(std::move(path)),
      m_inode(inode),
      m_allowedUid(allowedUid),
      m_listenFd(std::move(listenFd)),
      m_wakeFd(std::move(wakeFd)) {}

ServerChannel::~ServerChannel() {
    Shutdown();
}

void ServerChannel::Shutdown() {
    std::lock_guard shutdownLock(m_shutdownMutex);
    {
        std::lock_guard lock(m_mutex);
        if (m_stopping) {
            return;
        }
        m_stopping = true;
    }
    Wake();
    if (m_thread.joinable()) {
        m_thread.join();
    }
    std::map<uint64_t, std::shared_ptr<Connection>> connections;
    std::deque<QueuedRequest> queue;
    {
        std::lock_guard lock(m_mutex);
        connections.swap(m_connections);
        queue.swap(m_queue);
    }
    m_requestReady.notify_all();
    struct stat info {};
    if (::lstat(m_path.c_str(), &info) == 0 && info.st_ino == m_inode) {
        ::unlink(m_path.c_str());
    }
    m_listenFd.Reset();
}

void ServerChannel::Wake() {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_wakeFd.Get(), &one, sizeof(one));
}

void ServerChannel::Run() {
    std::vector<pollfd> polled;
    std::vector<std::shared_ptr<Connection>> clients;
    for (;;) {
        polled.clear();
        clients.clear();
        polled.push_back({m_wakeFd.Get(), POLLIN, 0});
        polled.push_back({m_listenFd.Get(), POLLIN, 0});
        {
            std::lock_guard lock(m_mutex);
            if (m_stopping) {
                return;
            }
            for (const auto& [id, connection] : m_connections) {
                // A client with a full queue is only watched for hang-up until it is served.
                const short events = connection->queued < kMaxQueuedPerClient ? POLLIN : 0;
                polled.push_back({connection->fd.Get(), events, 0});
                clients.push_back(connection);
            }
        }
        if (::poll(polled.data(), polled.size(), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            HL_LOG(LogLevel::Error, "Server {}: poll failed: {}", m_name, std::strerror(errno));
            return;
        }
        if ((polled[0].revents & POLLIN) != 0) {
            uint64_t value = 0;
            [[maybe_unused]] const ssize_t got = ::read(m_wakeFd.Get(), &value, sizeof(value));
        }
        if ((polled[1].revents & POLLIN) != 0) {
            AcceptClients();
        }
        for (size_t i = 0; i < clients.size(); ++i) {
            const short revents = polled[i + 2].revents;
            if ((revents & POLLIN) != 0) {
                ServeClient(clients[i]);
            } else if ((revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
                Drop(clients[i]->id);
            }
        }
    }
}

void ServerChannel::AcceptClients() {
    for (;;) {
        UniqueFd fd(::accept4(m_listenFd.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!fd.IsValid()) {
            if (errno == EINTR || errno == ECONNABORTED) {
                continue;
            }
            if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
                // The client stays in the backlog; pausing keeps the pump from spinning on it.
                HL_LOG(LogLevel::Error, "Server {}: cannot accept a client: {}", m_name,
                       std::strerror(errno));
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            }
            return;
        }
        ucred credentials{};
        socklen_t length = sizeof(credentials);
        if (::getsockopt(fd.Get(), SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) {
            HL_LOG(LogLevel::Warning, "Server {}: refusing a peer whose credentials are unknown", m_name);
            continue;
        }
        auto connection = std::make_shared<Connection>();
        connection->fd = std::move(fd);
        if (credentials.uid != m_allowedUid) {
            HL_LOG(LogLevel::Warning,
                   "Server {}: refusing a peer of uid {} (pid {}): only uid {} may connect", m_name,
                   credentials.uid, credentials.pid, m_allowedUid);
            // Kept until its first frame has been read and refused: closing a socket with unread
            // data would reset the peer before it could read why.
            connection->refused = true;
        }
        TuneSocketBuffers(connection->fd.Get());
        std::lock_guard lock(m_mutex);
        connection->id = m_nextClient++;
        m_connections.emplace(connection->id, std::move(connection));
    }
}

void ServerChannel::ServeClient(const std::shared_ptr<Connection>& connection) {
    std::vector<UniqueFd> fds;
    const ReadResult read = ReadPacket(connection->fd.Get(), m_buffer, fds);
    if (connection->refused && read.status != ReadStatus::WouldBlock) {
        if (read.status != ReadStatus::Closed && read.status != ReadStatus::Failed) {
            Refuse(*connection, m_buffer.data(), read.length, NK_EACCESS, "peer of another user");
        }
        Drop(connection->id);
        return;
    }
    switch (read.status) {
        case ReadStatus::WouldBlock:
            return;
        case ReadStatus::Closed:
        case ReadStatus::Failed:
            Drop(connection->id);
            return;
        case ReadStatus::Oversized:
            Refuse(*connection, m_buffer.data(), kMaxFrameSize, NK_ETOOBIG,
                   "frame larger than " + std::to_string(kMaxFrameSize) + " bytes");
            return;
        case ReadStatus::TooManyFds:
            Refuse(*connection, m_buffer.data(), read.length, NK_ETOOBIG, "too many passed handles");
            return;
        case ReadStatus::Packet:
            HandleFrame(connection, read.length, fds);
            return;
    }
}

void ServerChannel::HandleFrame(const std::shared_ptr<Connection>& connection, size_t length,
                                std::vector<UniqueFd>& fds) {
    ParsedFrame frame;
    std::string reason;
    const std::span<const uint8_t> packet(m_buffer.data(), length);
    const int rc = ParseFrame(packet, fds.size(), frame, reason);
    if (rc != NK_EOK) {
        Refuse(*connection, m_buffer.data(), length, rc, reason);
        return;
    }
    if (frame.header.kind == FrameKind::Resolve) {
        AnswerResolve(*connection, frame);
        return;
    }
    if (frame.header.kind != FrameKind::Request) {
        Refuse(*connection, m_buffer.data(), length, NK_EBADMSG,
               "unexpected frame kind " + std::to_string(static_cast<int>(frame.header.kind)));
        return;
    }
    QueuedRequest request{connection, std::vector<uint8_t>(packet.begin(), packet.end()), std::move(fds)};
    {
        std::lock_guard lock(m_mutex);
        ++connection->queued;
        m_queue.push_back(std::move(request));
    }
    m_requestReady.notify_one();
}

void ServerChannel::AnswerResolve(Connection& connection, const ParsedFrame& frame) {
    const std::string_view name(reinterpret_cast<const char*>(frame.arena.data()), frame.arena.size());
    const int riid = Task::Self().Resolve(name);
    if (riid < 0) {
        HL_LOG(LogLevel::Info, "Server {}: no endpoint answers to \"{}\"", m_name, name);
    }
    FrameHeader answer;
    answer.kind = FrameKind::Resolved;
    answer.iid = NK_IID_ANY;
    answer.sequence = frame.header.sequence;
    answer.result = riid < 0 ? riid : NK_EOK;
    const uint32_t riidField = riid < 0 ? NK_INVALID_RIID : static_cast<uint32_t>(riid);
    uint8_t body[sizeof(riidField)];
    std::memcpy(body, &riidField, sizeof(riidField));
    OutgoingPacket out;
    PrepareBare(answer, body, {}, out);
    SendPacket(connection.fd.Get(), std::span(out.parts.data(), out.partCount), {},
               Deadline::FromTimeoutMs(kRefusalSendMs));
}

void ServerChannel::Refuse(Connection& connection, const uint8_t* packet, size_t length, int code,
                           const std::string& reason) {
    HL_LOG(LogLevel::Warning, "Server {}: refused a frame from client {}: {} ({:#x})", m_name, connection.id,
           reason, static_cast<uint32_t>(code));
    FrameHeader answer;
    answer.kind = FrameKind::Refused;
    if (packet != nullptr && length >= NK_MESSAGE_HEADER_SIZE) {
        const FrameHeader offending = DecodeHeader(packet);
        answer.iid = offending.iid;
        answer.mid = offending.mid;
        answer.sequence = offending.sequence;
    }
    answer.result = code;
    OutgoingPacket out;
    PrepareBare(answer, {}, {}, out);
    SendPacket(connection.fd.Get(), std::span(out.parts.data(), out.partCount), {},
               Deadline::FromTimeoutMs(kRefusalSendMs));
}

void ServerChannel::Drop(uint64_t id) {
    std::vector<QueuedRequest> dropped;
    std::lock_guard lock(m_mutex);
    m_connections.erase(id);
    for (auto it = m_queue.begin(); it != m_queue.end();) {
        if (it->connection->id == id) {
            dropped.push_back(std::move(*it));
            it = m_queue.erase(it);
        } else {
            ++it;
        }
    }
}

std::shared_ptr<ServerChannel::Connection> ServerChannel::FindConnection(uint64_t id) {
    std::lock_guard lock(m_mutex);
    const auto found = m_connections.find(id);
    return found != m_connections.end() ? found->second : nullptr;
}

int ServerChannel::Receive(nk_message* request, nk_arena* arena, const Deadline& deadline, Pending& pending) {
    for (;;) {
        QueuedRequest next;
        {
            std::unique_lock lock(m_mutex);
            const auto ready = [this] { return m_stopping || !m_queue.empty(); };
            if (deadline.IsInfinite()) {
                m_requestReady.wait(lock, ready);
            } else if (!m_requestReady.wait_until(lock, deadline.TimePoint(), ready)) {
                return NK_TRANSPORT_TIMEOUT;
            }
            if (m_stopping) {
                return NK_ECLOSED;
            }
            next = std::move(m_queue.front());
            m_queue.pop_front();
            if (next.connection->queued-- == kMaxQueuedPerClient) {
                Wake();
            }
        }
        ParsedFrame frame;
        std::string reason;
        int rc = ParseFrame(next.packet, next.fds.size(), frame, reason);
        if (rc == NK_EOK) {
            rc = DeliverFrame(frame, next.fds, request, arena, reason);
        }
        if (rc == NK_EOK) {
            pending.client = next.connection->id;
            pending.sequence = frame.header.sequence;
            return NK_EOK;
        }
        Refuse(*next.connection, next.packet.data(), next.packet.size(), rc, reason);
    }
}

int ServerChannel::Reply(const Pending& pending, const nk_message* response, const nk_arena* arena,
                         const Deadline& deadline) {
    const auto connection = FindConnection(pending.client);
    if (!connection) {
        HL_LOG(LogLevel::Debug, "Server {}: client {} has gone before its reply", m_name, pending.client);
        return NK_ECLOSED;
    }
    FrameHeader frame;
    frame.kind = FrameKind::Response;
    frame.sequence = pending.sequence;
    OutgoingPacket out;
    std::string reason;
    int rc = PrepareOutgoing(response, arena, frame, out, reason);
    if (rc != NK_EOK) {
        HL_LOG(LogLevel::Error, "Server {}: reply to client {} cannot be sent: {}", m_name, pending.client,
               reason);
        FrameHeader refusal;
        refusal.kind = FrameKind::Refused;
        refusal.sequence = pending.sequence;
        refusal.iid = response != nullptr ? response->iid : 0;
        refusal.mid = response != nullptr ? response->mid : 0;
        refusal.result = rc;
        OutgoingPacket bare;
        PrepareBare(refusal, {}, {}, bare);
        SendPacket(connection->fd.Get(), std::span(bare.parts.data(), bare.partCount), {},
                   Deadline::FromTimeoutMs(kRefusalSendMs));
        return rc;
    }
    const Deadline capped = deadline.IsInfinite() || deadline.RemainingPollMs() > int{kMaxReplySendMs}
                                ? Deadline::FromTimeoutMs(kMaxReplySendMs)
                                : deadline;
    rc = SendPacket(connection->fd.Get(), std::span(out.parts.data(), out.partCount), out.fds, capped);
    if (rc == NK_TRANSPORT_TIMEOUT) {
        HL_LOG(LogLevel::Warning, "Server {}: client {} does not take its replies; disconnecting it", m_name,
               pending.client);
        Drop(pending.client);
    } else if (rc != NK_EOK) {
        HL_LOG(LogLevel::Debug, "Server {}: reply to client {} failed with {:#x}", m_name, pending.client,
               static_cast<uint32_t>(rc));
    }
    return rc;
}

}  // namespace hos::platform
