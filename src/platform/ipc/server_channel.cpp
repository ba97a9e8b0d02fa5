#include "ipc/server_channel.h"

#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <diagnostics/log.h>
#include <platform/nk_result.h>

#include "ipc/message_codec.h"

namespace hos::platform {
namespace {

using hos::logger::LogLevel;
using Clock = std::chrono::steady_clock;

// How long the serving code may be away from Receive before the pump answers handshakes for it.
constexpr std::chrono::nanoseconds kPumpTakesOver = std::chrono::milliseconds(2);

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
    std::map<uint64_t, std::shared_ptr<ClientConnection>> connections;
    {
        std::lock_guard lock(m_mutex);
        connections.swap(m_connections);
        ++m_generation;
    }
    // A receiver may still hold a client for a moment; shutting the sockets down ends every
    // client's pending call now rather than when the last holder lets go.
    for (const auto& [id, connection] : connections) {
        connection->Disconnect();
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
        if (const int leftMs = client->OutboxMsLeft(now); leftMs >= 0) {
            // Nothing more is read from a client until its answers have gone out.
            events = POLLOUT;
            timeoutMs = timeoutMs < 0 ? leftMs : std::min(timeoutMs, leftMs);
        } else if (std::find(parked.begin(), parked.end(), client->Id()) != parked.end()) {
            events = 0;  // a request waits for the next Receive; only a hang-up is of interest
        }
        polled.push_back({client->Fd(), events, 0});
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
            if (client->HasOutbox()) {
                if (!client->FlushOutbox()) {
                    Drop(client->Id());
                }
                continue;
            }
            if ((revents & POLLIN) != 0) {
                size_t length = 0;
                ParsedFrame frame;
                const ReadOutcome outcome = client->Read(m_pumpBuffer, fds, length, frame, true);
                if (outcome == ReadOutcome::Parked) {
                    parked.push_back(client->Id());
                } else if (outcome == ReadOutcome::Gone) {
                    Drop(client->Id());
                }
            } else if ((revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
                Drop(client->Id());
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
            const uint64_t id = m_nextClient++;
            m_connections.emplace(id, std::make_shared<ClientConnection>(id, std::move(peer.fd), peer.refused,
                                                                         m_name, [this] {
                                                                             Signal(m_wakeFd.Get());
                                                                             Signal(m_refreshFd.Get());
                                                                         }));
        }
        ++m_generation;
    }
    Signal(m_refreshFd.Get());
}

void ServerChannel::Drop(uint64_t id) {
    std::shared_ptr<ClientConnection> dropped;
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
    dropped->Disconnect();
}

std::shared_ptr<ClientConnection> ServerChannel::FindConnection(uint64_t id) {
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
        while (start < count && m_receiveClients[start]->Id() <= m_lastServed) {
            ++start;
        }
        for (size_t k = 0; k < count; ++k) {
            const size_t i = (start + k) % count;
            const auto& client = m_receiveClients[i];
            const short revents = m_receivePolled[i + 1].revents;
            if (client->HasOutbox()) {
                if (!client->FlushOutbox()) {
                    Drop(client->Id());
                }
                continue;
            }
            if ((revents & POLLIN) == 0) {
                if ((revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
                    Drop(client->Id());
                }
                continue;
            }
            size_t length = 0;
            ParsedFrame frame;
            const ReadOutcome outcome = client->Read(m_receiveBuffer, fds, length, frame, false);
            if (outcome == ReadOutcome::Gone) {
                Drop(client->Id());
            }
            if (outcome != ReadOutcome::Request) {
                continue;
            }
            std::string reason;
            const int rc = DeliverFrame(frame, fds, request, arena, reason);
            m_lastServed = client->Id();
            if (rc == NK_EOK) {
                pending.client = client->Id();
                pending.sequence = frame.header.sequence;
                return NK_EOK;
            }
            client->Refuse(m_receiveBuffer.data(), length, rc, reason);
        }
    }
}

int ServerChannel::Reply(const Pending& pending, const nk_message* response, const nk_arena* arena) {
    const auto connection = FindConnection(pending.client);
    if (!connection) {
        HL_LOG(LogLevel::Debug, "Server {}: client {} has gone before its reply", m_name, pending.client);
        return NK_ECLOSED;
    }
    return connection->SendResponse(pending.sequence, response, arena);
}

}  // namespace hos::platform
