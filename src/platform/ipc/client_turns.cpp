#include "ipc/client_turns.h"

#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>

#include <diagnostics/log.h>
#include <diagnostics/log_rate_limiter.h>
#include <platform/nk_result.h>

namespace hos::platform {
namespace {

using hos::logger::LogLevel;
using Clock = std::chrono::steady_clock;

// How long the serving code may be away from Receive before the pump answers handshakes for it.
constexpr std::chrono::nanoseconds kPumpTakesOver = std::chrono::milliseconds(2);

void Ring(int eventFd) {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(eventFd, &one, sizeof(one));
}

void Clear(int eventFd) {
    uint64_t value = 0;
    [[maybe_unused]] const ssize_t got = ::read(eventFd, &value, sizeof(value));
}

// Descriptors kept for the process's own files beside its clients.
constexpr rlim_t kReservedDescriptors = 64;
constexpr std::size_t kMostConnections = 4096;
constexpr auto kSilentLimit = std::chrono::seconds(5);

}  // namespace

ConnectionLimits ConnectionLimits::ForThisProcess() {
    static std::once_flag raised;
    std::call_once(raised, [] {
        rlimit limit{};
        if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
            const rlim_t before = limit.rlim_cur;
            limit.rlim_cur = limit.rlim_max;
            if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) {
                HL_LOG(LogLevel::Warning, "cannot raise the descriptor limit from {} to {}: {}", before,
                       limit.rlim_max, std::strerror(errno));
            }
        }
    });
    rlimit limit{};
    rlim_t descriptors = 1024;
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        descriptors = limit.rlim_cur;
    }
    const rlim_t spare = descriptors > kReservedDescriptors ? descriptors - kReservedDescriptors : 0;
    ConnectionLimits limits;
    limits.total = std::clamp<std::size_t>(static_cast<std::size_t>(spare / 2), 8, kMostConnections);
    limits.perUid = std::max<std::size_t>(limits.total / 2, 4);
    limits.silent = kSilentLimit;
    return limits;
}

std::unique_ptr<ClientTurns> ClientTurns::Create(std::string server, ConnectionLimits limits, int& rc) {
    UniqueFd pumpBell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    UniqueFd receiverBell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    UniqueFd idleTimer(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    if (!pumpBell.IsValid() || !receiverBell.IsValid() || !idleTimer.IsValid()) {
        HL_LOG(LogLevel::Error, "Server {}: cannot make a socket: {}", server, std::strerror(errno));
        rc = NK_ENOMEM;
        return nullptr;
    }
    rc = NK_EOK;
    return std::unique_ptr<ClientTurns>(new ClientTurns(std::move(server), limits, std::move(pumpBell),
                                                        std::move(receiverBell), std::move(idleTimer)));
}

ClientTurns::ClientTurns(std::string server, ConnectionLimits limits, UniqueFd pumpBell,
                         UniqueFd receiverBell, UniqueFd idleTimer)
    : m_server(std::move(server)),
      m_limits(limits),
      m_pumpBell(std::move(pumpBell)),
      m_receiverBell(std::move(receiverBell)),
      m_idleTimer(std::move(idleTimer)) {}

void ClientTurns::RingBoth() const {
    Ring(m_pumpBell.Get());
    Ring(m_receiverBell.Get());
}

void ClientTurns::ClearReceiverBell() const {
    Clear(m_receiverBell.Get());
}

void ClientTurns::ClearPumpBell() const {
    Clear(m_pumpBell.Get());
}

int ClientTurns::EnterReceive(const Deadline& deadline, ClientList& clients, uint64_t& generation) {
    std::unique_lock lock(m_mutex);
    const auto myTurn = [this] { return m_holder != Holder::Receiver && m_holder != Holder::ToReceiver; };
    if (deadline.IsInfinite()) {
        m_turnChanged.wait(lock, myTurn);
    } else if (!m_turnChanged.wait_until(lock, deadline.TimePoint(), myTurn)) {
        return NK_TRANSPORT_TIMEOUT;
    }
    switch (m_holder) {
        case Holder::Stopping:
            return NK_ECLOSED;
        case Holder::Nobody:
            m_holder = Holder::Receiver;
            CopyClients(clients, generation);
            return NK_EOK;
        case Holder::Pump:
            // The pump may be polling the sockets: it lets go at the top of its next round.
            m_holder = Holder::ToReceiver;
            Ring(m_pumpBell.Get());
            m_turnChanged.wait(lock, [this] { return m_holder != Holder::ToReceiver; });
            if (m_holder != Holder::Receiver) {
                return NK_ECLOSED;
            }
            CopyClients(clients, generation);
            return NK_EOK;
        case Holder::ToReceiver:
        case Holder::Receiver:
            break;
    }
    return NK_EFAIL;  // not reached: myTurn excludes these
}

void ClientTurns::LeaveReceive() {
    {
        std::lock_guard lock(m_mutex);
        if (m_holder == Holder::Receiver) {
            m_holder = Holder::Nobody;
        }
    }
    m_turnChanged.notify_all();
    // The pump answers handshakes again if the serving code stays away for a while. The timer is
    // set once per period, not per request: when it fires early, the pump sets it again.
    m_leftReceiveAt.store(Clock::now().time_since_epoch().count());
    if (!m_idleTimerArmed.load(std::memory_order_relaxed)) {
        ArmIdleTimer(kPumpTakesOver);
    }
}

ClientTurns::PumpRole ClientTurns::PumpTurn() {
    std::unique_lock lock(m_mutex);
    switch (m_holder) {
        case Holder::Stopping:
            return PumpRole::Stop;
        case Holder::Pump:
            return PumpRole::Read;
        case Holder::ToReceiver:
            m_holder = Holder::Receiver;
            lock.unlock();
            m_turnChanged.notify_all();
            return PumpRole::Wait;
        case Holder::Receiver:
        case Holder::Nobody:
            break;
    }
    return PumpRole::Wait;
}

void ClientTurns::IdleTimerFired() {
    Clear(m_idleTimer.Get());
    m_idleTimerArmed.store(false);
    const auto away =
        std::chrono::nanoseconds(Clock::now().time_since_epoch().count() - m_leftReceiveAt.load());
    std::lock_guard lock(m_mutex);
    if (m_holder != Holder::Nobody) {
        return;
    }
    if (away >= kPumpTakesOver) {
        m_holder = Holder::Pump;
    } else {
        ArmIdleTimer(kPumpTakesOver - away);
    }
}

void ClientTurns::ArmIdleTimer(std::chrono::nanoseconds after) {
    m_idleTimerArmed.store(true);
    itimerspec idle{};
    idle.it_value.tv_sec = static_cast<time_t>(after.count() / 1'000'000'000);
    idle.it_value.tv_nsec = std::max<long>(static_cast<long>(after.count() % 1'000'000'000), 1);
    ::timerfd_settime(m_idleTimer.Get(), 0, &idle, nullptr);
}

bool ClientTurns::Stop() {
    {
        std::lock_guard lock(m_mutex);
        if (m_holder == Holder::Stopping) {
            return false;
        }
        m_holder = Holder::Stopping;
    }
    m_turnChanged.notify_all();
    RingBoth();
    return true;
}

void ClientTurns::Add(std::vector<ServerListener::Peer> peers) {
    if (peers.empty()) {
        return;
    }
    {
        std::lock_guard lock(m_mutex);
        const auto silentUntil = Clock::now() + m_limits.silent;
        for (auto& peer : peers) {
            if (!MakeRoom(peer.uid)) {
                static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
                if (const auto admission = limiter.Admit(peer.uid)) {
                    HL_LOG(
                        LogLevel::Warning,
                        "Server {}: refusing a connection of uid {} (pid {}): {} connections are open, {} of "
                        "that uid, and all have spoken{}",
                        m_server, peer.uid, peer.pid, m_clients.size(), UidCount(peer.uid), admission.Note());
                }
                continue;  // the peer's descriptor closes here
            }
            const uint64_t id = m_nextClient++;
            m_clients.emplace(
                id, std::make_shared<ClientConnection>(id, std::move(peer.fd), peer.refused, peer.uid,
                                                       peer.pid, m_server, [this] { RingBoth(); }));
            ++m_perUid[peer.uid];
            m_silent.emplace_back(silentUntil, id);
        }
        ++m_generation;
    }
    Ring(m_receiverBell.Get());
}

bool ClientTurns::MakeRoom(uid_t uid) {
    const bool uidFull = UidCount(uid) >= m_limits.perUid;
    if (!uidFull && m_clients.size() < m_limits.total) {
        return true;
    }
    // The oldest connection that has never spoken (of this uid when the uid is at its bound).
    for (auto it = m_clients.begin(); it != m_clients.end(); ++it) {
        if (!it->second->HasSpoken() && (!uidFull || it->second->Uid() == uid)) {
            static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
            if (const auto admission = limiter.Admit(uid)) {
                HL_LOG(LogLevel::Info,
                       "Server {}: closing client {} (pid {}), which has sent nothing, for a new one{}",
                       m_server, it->first, it->second->Pid(), admission.Note());
            }
            EraseLocked(it);
            return true;
        }
    }
    return false;
}

void ClientTurns::EraseLocked(std::map<uint64_t, std::shared_ptr<ClientConnection>>::iterator client) {
    // Others may hold the connection a moment longer; the client learns at once that it is over.
    client->second->Disconnect();
    if (auto count = m_perUid.find(client->second->Uid()); count != m_perUid.end() && --count->second == 0) {
        m_perUid.erase(count);
    }
    if (m_recordDropped) {
        m_dropped.push_back(client->first);
    }
    m_clients.erase(client);
    ++m_generation;
}

int ClientTurns::DropSilent() {
    bool dropped = false;
    int leftMs = -1;
    {
        std::lock_guard lock(m_mutex);
        const auto now = Clock::now();
        while (!m_silent.empty()) {
            const auto [until, id] = m_silent.front();
            const auto client = m_clients.find(id);
            if (client == m_clients.end() || client->second->HasSpoken()) {
                m_silent.pop_front();
                continue;
            }
            if (until > now) {
                leftMs = static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(until - now).count());
                break;
            }
            static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
            if (const auto admission = limiter.Admit(static_cast<uint64_t>(client->second->Pid()))) {
                HL_LOG(LogLevel::Info,
                       "Server {}: closing client {} (pid {}), which sent nothing within {} ms{}", m_server,
                       id, client->second->Pid(), m_limits.silent.count(), admission.Note());
            }
            EraseLocked(client);
            m_silent.pop_front();
            dropped = true;
        }
    }
    if (dropped) {
        Ring(m_receiverBell.Get());
    }
    return leftMs;
}

bool ClientTurns::Current(ClientList& clients, uint64_t& generation) {
    std::lock_guard lock(m_mutex);
    if (m_holder == Holder::Stopping) {
        return false;
    }
    CopyClients(clients, generation);
    return true;
}

void ClientTurns::CopyClients(ClientList& clients, uint64_t& generation) const {
    if (generation == m_generation) {
        return;
    }
    generation = m_generation;
    clients.clear();
    clients.reserve(m_clients.size());
    for (const auto& [id, client] : m_clients) {
        clients.push_back(client);
    }
}

std::shared_ptr<ClientConnection> ClientTurns::Find(uint64_t id) {
    std::lock_guard lock(m_mutex);
    const auto found = m_clients.find(id);
    return found != m_clients.end() ? found->second : nullptr;
}

void ClientTurns::Drop(uint64_t id) {
    std::lock_guard lock(m_mutex);
    if (const auto found = m_clients.find(id); found != m_clients.end()) {
        EraseLocked(found);
    }
}

std::vector<uint64_t> ClientTurns::TakeDropped(size_t room) {
    std::lock_guard lock(m_mutex);
    m_recordDropped = true;
    const size_t count = std::min(room, m_dropped.size());
    std::vector<uint64_t> taken(m_dropped.begin(), m_dropped.begin() + static_cast<std::ptrdiff_t>(count));
    m_dropped.erase(m_dropped.begin(), m_dropped.begin() + static_cast<std::ptrdiff_t>(count));
    return taken;
}

void ClientTurns::DropAll() {
    std::map<uint64_t, std::shared_ptr<ClientConnection>> clients;
    {
        std::lock_guard lock(m_mutex);
        clients.swap(m_clients);
        m_perUid.clear();
        m_silent.clear();
        ++m_generation;
    }
    // A receiver may still hold a client for a moment; shutting the sockets down ends every
    // client's pending call now rather than when the last holder lets go.
    for (const auto& [id, client] : clients) {
        client->Disconnect();
    }
}

}  // namespace hos::platform
