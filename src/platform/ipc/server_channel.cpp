#include "ipc/server_channel.h"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <diagnostics/log.h>
#include <platform/nk_result.h>

#include "ipc/message_codec.h"
#include "ipc/packet_io.h"
#include "task/task.h"

namespace hos::platform {
namespace {

using hos::logger::LogLevel;
using Clock = std::chrono::steady_clock;

// How long the serving code may be away from Receive before the pump answers handshakes for it.
constexpr std::chrono::nanoseconds kPumpTakesOver = std::chrono::milliseconds(2);
// How long a client may leave its answers unread before it is disconnected.
constexpr auto kOutboxLimit = std::chrono::seconds(5);

}  // namespace

std::shared_ptr<ServerChannel> ServerChannel::Open(const std::string& name, int& rc) {
    return OpenImpl(name, ::geteuid(), rc);
}

std::shared_ptr<ServerChannel> ServerChannel::OpenForTesting(const std::string& name, uid_t allowedUid,
                                                             int& rc) {
    return OpenImpl(name, allowedUid, rc);
}

std::shared_ptr<ServerChannel> ServerChannel::OpenImpl(const std::string& name, uid_t allowedUid, int& rc) {
    auto listener = ServerListener::Bind(name, allowedUid, rc);
    if (!listener) {
        return nullptr;
    }
    UniqueFd wakeFd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    UniqueFd refreshFd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    UniqueFd idleTimerFd(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    if (!wakeFd.IsValid() || !refreshFd.IsValid() || !idleTimerFd.IsValid()) {
        HL_LOG(LogLevel::Error, "Server {}: cannot make a socket: {}", name, std::strerror(errno));
        rc = NK_ENOMEM;
        return nullptr;
    }
    std::shared_ptr<ServerChannel> channel(new ServerChannel(name, std::move(listener), std::move(wakeFd),
                                                             std::move(refreshFd), std::move(idleTimerFd)));
    channel->m_thread = std::thread([raw = channel.get()] { raw->Run(); });
    rc = NK_EOK;
    return channel;
}

ServerChannel::ServerChannel(std::string name, std::unique_ptr<ServerListener> listener, UniqueFd wakeFd,
                             UniqueFd refreshFd, UniqueFd idleTimerFd)
    : m_name(std::move(name)),
      m_listener(std::move(listener)),
      m_wakeFd(std::move(wakeFd)),
      m_refreshFd(std::move(refreshFd)),
      m_idleTimerFd(std::move(idleTimerFd)) {}

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
    m_roles.notify_all();
    Signal(m_wakeFd.Get());
    Signal(m_refreshFd.Get());
    if (m_thread.joinable()) {
        m_thread.join();
    }
    std::map<uint64_t, std::shared_ptr<Connection>> connections;
    {
        std::lock_guard lock(m_mutex);
        connections.swap(m_connections);
        ++m_generation;
    }
    // A receiver may still hold a client for a moment; shutting the sockets down ends every
    // client's pending call now rather than when the last holder lets go.
    for (const auto& [id, connection] : connections) {
        ::shutdown(connection->fd.Get(), SHUT_RDWR);
    }
    m_listener->Close();
}

void ServerChannel::Signal(int eventFd) {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(eventFd, &one, sizeof(one));
}

void ServerChannel::Clear(int eventFd) {
    uint64_t value = 0;
    [[maybe_unused]] const ssize_t got = ::read(eventFd, &value, sizeof(value));
}

ServerChannel::ConnectionList ServerChannel::Snapshot(uint64_t& generation) {
    ConnectionList clients;
    std::lock_guard lock(m_mutex);
    generation = m_generation;
    clients.reserve(m_connections.size());
    for (const auto& [id, connection] : m_connections) {
        clients.push_back(connection);
    }
    return clients;
}

int ServerChannel::PollClients(const ConnectionList& clients, const std::vector<uint64_t>& parked,
                               std::vector<pollfd>& polled) const {
    int timeoutMs = -1;
    const auto now = Clock::now();
    for (const auto& client : clients) {
        short events = POLLIN;
        if (client->hasOutbox.load(std::memory_order_acquire)) {
            // Nothing more is read from a client until its answers have gone out.
            events = POLLOUT;
            std::lock_guard lock(client->sendMutex);
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(client->outboxSince + kOutboxLimit - now)
                    .count();
            const int leftMs = static_cast<int>(std::max<long long>(left, 0));
            timeoutMs = timeoutMs < 0 ? leftMs : std::min(timeoutMs, leftMs);
        } else if (std::find(parked.begin(), parked.end(), client->id) != parked.end()) {
            events = 0;  // a request waits for the next Receive; only a hang-up is of interest
        }
        polled.push_back({client->fd.Get(), events, 0});
    }
    return timeoutMs;
}

void ServerChannel::Run() {
    std::vector<pollfd> polled;
    ConnectionList clients;
    std::vector<uint64_t> parked;
    std::vector<UniqueFd> fds;
    uint64_t generation = 0;
    for (;;) {
        bool reading = false;
        {
            std::lock_guard lock(m_mutex);
            if (m_stopping) {
                return;
            }
            reading = !m_receiverActive && m_pumpMayRead;
            if (m_pumpReading != reading) {
                m_pumpReading = reading;
                parked.clear();
            }
        }
        m_roles.notify_all();
        polled.clear();
        polled.push_back({m_wakeFd.Get(), POLLIN, 0});
        polled.push_back({m_listener->Fd(), POLLIN, 0});
        polled.push_back({m_idleTimerFd.Get(), POLLIN, 0});
        constexpr size_t kFirstClient = 3;
        int timeoutMs = -1;
        clients.clear();
        if (reading) {
            clients = Snapshot(generation);
            timeoutMs = PollClients(clients, parked, polled);
        }
        if (::poll(polled.data(), polled.size(), timeoutMs) < 0) {
            if (errno == EINTR) {
                continue;
            }
            HL_LOG(LogLevel::Error, "Server {}: poll failed: {}", m_name, std::strerror(errno));
            return;
        }
        if ((polled[0].revents & POLLIN) != 0) {
            Clear(m_wakeFd.Get());
        }
        if ((polled[2].revents & POLLIN) != 0) {
            Clear(m_idleTimerFd.Get());
            m_idleTimerArmed.store(false);
            const auto away =
                std::chrono::nanoseconds(Clock::now().time_since_epoch().count() - m_leftReceiveAt.load());
            std::lock_guard lock(m_mutex);
            if (!m_receiverActive && away >= kPumpTakesOver) {
                m_pumpMayRead = true;
            } else if (!m_receiverActive) {
                ArmIdleTimer(kPumpTakesOver - away);
            }
        }
        if ((polled[1].revents & POLLIN) != 0) {
            AcceptClients();
        }
        for (size_t i = 0; i < clients.size(); ++i) {
            const auto& client = clients[i];
            const short revents = polled[i + kFirstClient].revents;
            if (client->hasOutbox.load(std::memory_order_acquire)) {
                if (!FlushOutbox(*client)) {
                    Drop(client->id);
                }
                continue;
            }
            if ((revents & POLLIN) != 0) {
                size_t length = 0;
                ParsedFrame frame;
                if (ReadClient(client, m_pumpBuffer, fds, length, frame, true) == ReadOutcome::Parked) {
                    parked.push_back(client->id);
                }
            } else if ((revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
                Drop(client->id);
            }
        }
    }
}

void ServerChannel::AcceptClients() {
    auto peers = m_listener->Accept();
    if (peers.empty()) {
        return;
    }
    {
        std::lock_guard lock(m_mutex);
        for (auto& peer : peers) {
            auto connection = std::make_shared<Connection>();
            connection->fd = std::move(peer.fd);
            connection->refused = peer.refused;
            connection->id = m_nextClient++;
            m_connections.emplace(connection->id, std::move(connection));
        }
        ++m_generation;
    }
    Signal(m_refreshFd.Get());
}

ServerChannel::ReadOutcome ServerChannel::ReadClient(const std::shared_ptr<Connection>& connection,
                                                     std::vector<uint8_t>& buffer, std::vector<UniqueFd>& fds,
                                                     size_t& length, ParsedFrame& frame, bool peekRequests) {
    if (peekRequests && !connection->refused) {
        uint8_t head[NK_MESSAGE_HEADER_SIZE];
        const ssize_t got = ::recv(connection->fd.Get(), head, sizeof(head), MSG_PEEK | MSG_DONTWAIT);
        if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) {
            return ReadOutcome::Nothing;
        }
        if (got == static_cast<ssize_t>(sizeof(head)) && DecodeHeader(head).kind == FrameKind::Request) {
            return ReadOutcome::Parked;
        }
    }
    const ReadResult read = ReadPacket(connection->fd.Get(), buffer, fds);
    if (connection->refused && read.status != ReadStatus::WouldBlock) {
        if (read.status != ReadStatus::Closed && read.status != ReadStatus::Failed) {
            Refuse(*connection, buffer.data(), read.length, NK_EACCESS, "peer of another user");
        }
        Drop(connection->id);
        return ReadOutcome::Handled;
    }
    switch (read.status) {
        case ReadStatus::WouldBlock:
            return ReadOutcome::Nothing;
        case ReadStatus::Closed:
        case ReadStatus::Failed:
            Drop(connection->id);
            return ReadOutcome::Handled;
        case ReadStatus::Oversized:
            Refuse(*connection, buffer.data(), kMaxFrameSize, NK_ETOOBIG,
                   "frame larger than " + std::to_string(kMaxFrameSize) + " bytes");
            return ReadOutcome::Handled;
        case ReadStatus::TooManyFds:
            Refuse(*connection, buffer.data(), read.length, NK_ETOOBIG, "too many passed handles");
            return ReadOutcome::Handled;
        case ReadStatus::Packet:
            break;
    }
    std::string reason;
    const int rc =
        ParseFrame(std::span<const uint8_t>(buffer.data(), read.length), fds.size(), frame, reason);
    if (rc != NK_EOK) {
        Refuse(*connection, buffer.data(), read.length, rc, reason);
        return ReadOutcome::Handled;
    }
    if (frame.header.kind == FrameKind::Resolve) {
        AnswerResolve(*connection, frame);
        return ReadOutcome::Handled;
    }
    if (frame.header.kind != FrameKind::Request) {
        Refuse(*connection, buffer.data(), read.length, NK_EBADMSG,
               "unexpected frame kind " + std::to_string(static_cast<int>(frame.header.kind)));
        return ReadOutcome::Handled;
    }
    length = read.length;
    return ReadOutcome::Request;
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
    SendOrKeep(connection, std::span(out.parts.data(), out.partCount), {});
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
    SendOrKeep(connection, std::span(out.parts.data(), out.partCount), {});
}

int ServerChannel::SendOrKeep(Connection& connection, std::span<const iovec> parts,
                              std::span<const int> fds) {
    std::lock_guard lock(connection.sendMutex);
    if (connection.outbox.empty()) {
        const int rc = SendPacket(connection.fd.Get(), parts, fds, Deadline::FromTimeoutMs(0));
        if (rc != NK_TRANSPORT_TIMEOUT) {
            return rc;
        }
    }
    // No room now: the frame waits, and the client is not read from until it has gone out.
    OutFrame frame;
    for (const auto& part : parts) {
        const auto* bytes = static_cast<const uint8_t*>(part.iov_base);
        frame.bytes.insert(frame.bytes.end(), bytes, bytes + part.iov_len);
    }
    for (const int fd : fds) {
        UniqueFd copy(::fcntl(fd, F_DUPFD_CLOEXEC, 0));
        if (!copy.IsValid()) {
            return NK_ENOMEM;
        }
        frame.fds.push_back(std::move(copy));
    }
    if (connection.outbox.empty()) {
        connection.outboxSince = Clock::now();
    }
    connection.outbox.push_back(std::move(frame));
    connection.hasOutbox.store(true, std::memory_order_release);
    // Whoever reads the clients now polls this one for room.
    Signal(m_wakeFd.Get());
    Signal(m_refreshFd.Get());
    return NK_EOK;
}

bool ServerChannel::FlushOutbox(Connection& connection) {
    std::lock_guard lock(connection.sendMutex);
    while (!connection.outbox.empty()) {
        OutFrame& frame = connection.outbox.front();
        std::vector<int> fds;
        for (const auto& fd : frame.fds) {
            fds.push_back(fd.Get());
        }
        const iovec part{frame.bytes.data(), frame.bytes.size()};
        const int rc = SendPacket(connection.fd.Get(), std::span(&part, 1), fds, Deadline::FromTimeoutMs(0));
        if (rc == NK_TRANSPORT_TIMEOUT) {
            break;
        }
        connection.outbox.pop_front();
        connection.outboxSince = Clock::now();
        if (rc == NK_ECLOSED) {
            return false;
        }
    }
    if (connection.outbox.empty()) {
        connection.hasOutbox.store(false, std::memory_order_release);
        return true;
    }
    if (Clock::now() - connection.outboxSince >= kOutboxLimit) {
        HL_LOG(LogLevel::Warning, "Server {}: client {} does not take its replies; disconnecting it", m_name,
               connection.id);
        return false;
    }
    return true;
}

void ServerChannel::Drop(uint64_t id) {
    std::shared_ptr<Connection> dropped;
    {
        std::lock_guard lock(m_mutex);
        const auto found = m_connections.find(id);
        if (found == m_connections.end()) {
            return;
        }
        dropped = std::move(found->second);
        m_connections.erase(found);
        ++m_generation;
    }
    // Others may hold the connection a moment longer; the client learns at once that it is over.
    ::shutdown(dropped->fd.Get(), SHUT_RDWR);
}

std::shared_ptr<ServerChannel::Connection> ServerChannel::FindConnection(uint64_t id) {
    std::lock_guard lock(m_mutex);
    const auto found = m_connections.find(id);
    return found != m_connections.end() ? found->second : nullptr;
}

void ServerChannel::LeaveReceive() {
    {
        std::lock_guard lock(m_mutex);
        m_receiverActive = false;
    }
    m_roles.notify_all();
    // The pump answers handshakes again if the serving code stays away for a while. The timer is
    // set once per period, not per request: when it fires early, the pump sets it again.
    m_leftReceiveAt.store(Clock::now().time_since_epoch().count());
    if (!m_idleTimerArmed.load(std::memory_order_relaxed)) {
        ArmIdleTimer(kPumpTakesOver);
    }
}

void ServerChannel::ArmIdleTimer(std::chrono::nanoseconds after) {
    m_idleTimerArmed.store(true);
    itimerspec idle{};
    idle.it_value.tv_sec = static_cast<time_t>(after.count() / 1'000'000'000);
    idle.it_value.tv_nsec = std::max<long>(static_cast<long>(after.count() % 1'000'000'000), 1);
    ::timerfd_settime(m_idleTimerFd.Get(), 0, &idle, nullptr);
}

int ServerChannel::Receive(nk_message* request, nk_arena* arena, const Deadline& deadline, Pending& pending) {
    {
        std::unique_lock lock(m_mutex);
        const auto myTurn = [this] { return m_stopping || !m_receiverActive; };
        if (deadline.IsInfinite()) {
            m_roles.wait(lock, myTurn);
        } else if (!m_roles.wait_until(lock, deadline.TimePoint(), myTurn)) {
            return NK_TRANSPORT_TIMEOUT;
        }
        if (m_stopping) {
            return NK_ECLOSED;
        }
        m_receiverActive = true;
        m_pumpMayRead = false;
        if (m_pumpReading) {
            Signal(m_wakeFd.Get());
            m_roles.wait(lock, [this] { return m_stopping || !m_pumpReading; });
        }
    }
    struct Leave {
        ServerChannel* self;
        ~Leave() { self->LeaveReceive(); }
    } leave{this};

    std::vector<UniqueFd> fds;
    const std::vector<uint64_t> noneParked;
    for (;;) {
        uint64_t generation = 0;
        {
            std::lock_guard lock(m_mutex);
            if (m_stopping) {
                return NK_ECLOSED;
            }
            generation = m_generation;
        }
        if (generation != m_receiveGeneration) {
            m_receiveClients = Snapshot(m_receiveGeneration);
        }
        m_receivePolled.clear();
        m_receivePolled.push_back({m_refreshFd.Get(), POLLIN, 0});
        const int outboxMs = PollClients(m_receiveClients, noneParked, m_receivePolled);
        const int deadlineMs = deadline.RemainingPollMs();
        const int timeoutMs = outboxMs < 0     ? deadlineMs
                              : deadlineMs < 0 ? outboxMs
                                               : std::min(outboxMs, deadlineMs);
        const int ready = ::poll(m_receivePolled.data(), m_receivePolled.size(), timeoutMs);
        if (ready < 0 && errno != EINTR) {
            HL_LOG(LogLevel::Error, "Server {}: poll failed: {}", m_name, std::strerror(errno));
            return NK_EFAIL;
        }
        if (ready <= 0) {
            if (deadline.HasPassed()) {
                return NK_TRANSPORT_TIMEOUT;
            }
            if (ready < 0) {
                continue;
            }
        }
        if ((m_receivePolled[0].revents & POLLIN) != 0) {
            Clear(m_refreshFd.Get());
        }
        // Clients in turn, starting after the one served last: one request each per round.
        const size_t count = m_receiveClients.size();
        size_t start = 0;
        while (start < count && m_receiveClients[start]->id <= m_lastServed) {
            ++start;
        }
        for (size_t k = 0; k < count; ++k) {
            const size_t i = (start + k) % count;
            const auto& client = m_receiveClients[i];
            const short revents = m_receivePolled[i + 1].revents;
            if (client->hasOutbox.load(std::memory_order_acquire)) {
                if (!FlushOutbox(*client)) {
                    Drop(client->id);
                }
                continue;
            }
            if ((revents & POLLIN) == 0) {
                if ((revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
                    Drop(client->id);
                }
                continue;
            }
            size_t length = 0;
            ParsedFrame frame;
            if (ReadClient(client, m_receiveBuffer, fds, length, frame, false) != ReadOutcome::Request) {
                continue;
            }
            std::string reason;
            const int rc = DeliverFrame(frame, fds, request, arena, reason);
            m_lastServed = client->id;
            if (rc == NK_EOK) {
                pending.client = client->id;
                pending.sequence = frame.header.sequence;
                return NK_EOK;
            }
            Refuse(*client, m_receiveBuffer.data(), length, rc, reason);
        }
    }
}

int ServerChannel::Reply(const Pending& pending, const nk_message* response, const nk_arena* arena) {
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
        SendOrKeep(*connection, std::span(bare.parts.data(), bare.partCount), {});
        return rc;
    }
    rc = SendOrKeep(*connection, std::span(out.parts.data(), out.partCount), out.fds);
    if (rc != NK_EOK) {
        HL_LOG(LogLevel::Debug, "Server {}: reply to client {} failed with {:#x}", m_name, pending.client,
               static_cast<uint32_t>(rc));
    }
    return rc;
}

}  // namespace hos::platform
