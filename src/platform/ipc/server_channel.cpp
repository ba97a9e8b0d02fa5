#include "ipc/server_channel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

#include <diagnostics/log.h>
#include <platform/nk_result.h>

#include "ipc/message_codec.h"

namespace hos::platform {
namespace {

using hos::logger::LogLevel;
using ReadOutcome = ClientConnection::ReadOutcome;

// Adds the clients to the poll set: readable ones for POLLIN, those with an outbox for POLLOUT.
// Returns the poll timeout that the oldest outbox leaves (-1 for none).
int PollClients(const ClientTurns::ClientList& clients, const std::vector<uint64_t>& parked,
                std::vector<pollfd>& polled) {
    int timeoutMs = -1;
    const auto now = std::chrono::steady_clock::now();
    for (const auto& client : clients) {
        short events = POLLIN;
        if (const int leftMs = client->HasOutbox() ? client->OutboxMsLeft(now) : -1; leftMs >= 0) {
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
    auto turns = ClientTurns::Create(name, ConnectionLimits::ForThisProcess(), rc);
    if (!turns) {
        return nullptr;
    }
    std::shared_ptr<ServerChannel> channel(new ServerChannel(name, std::move(listener), std::move(turns)));
    channel->m_thread = std::thread([raw = channel.get()] { raw->Run(); });
    rc = NK_EOK;
    return channel;
}

ServerChannel::ServerChannel(std::string name, std::unique_ptr<ServerListener> listener,
                             std::unique_ptr<ClientTurns> turns)
    : m_name(std::move(name)), m_listener(std::move(listener)), m_turns(std::move(turns)) {}

ServerChannel::~ServerChannel() {
    Shutdown();
}

void ServerChannel::Shutdown() {
    std::lock_guard shutdownLock(m_shutdownMutex);
    if (!m_turns->Stop()) {
        return;
    }
    if (m_thread.joinable()) {
        m_thread.join();
    }
    m_turns->DropAll();
    m_listener->Close();
}

void ServerChannel::Run() {
    std::vector<pollfd> polled;
    ClientTurns::ClientList clients;
    uint64_t generation = ~uint64_t{0};
    std::vector<uint64_t> parked;
    std::vector<UniqueFd> fds;
    bool wasReading = false;
    for (;;) {
        const ClientTurns::PumpRole role = m_turns->PumpTurn();
        if (role == ClientTurns::PumpRole::Stop) {
            return;
        }
        const bool reading = role == ClientTurns::PumpRole::Read;
        if (reading != wasReading) {
            wasReading = reading;
            parked.clear();
        }
        polled.clear();
        polled.push_back({m_turns->PumpBell(), POLLIN, 0});
        polled.push_back({m_listener->Fd(), POLLIN, 0});
        polled.push_back({m_turns->IdleTimer(), POLLIN, 0});
        constexpr size_t kFirstClient = 3;
        int timeoutMs = -1;
        if (!reading) {
            clients.clear();
            generation = ~uint64_t{0};
        } else if (m_turns->Current(clients, generation)) {
            timeoutMs = PollClients(clients, parked, polled);
        } else {
            continue;  // stopping: the next turn says so
        }
        if (const int silentMs = m_turns->DropSilent(); silentMs >= 0) {
            timeoutMs = timeoutMs < 0 ? silentMs : std::min(timeoutMs, silentMs);
        }
        if (::poll(polled.data(), polled.size(), timeoutMs) < 0) {
            if (errno == EINTR) {
                continue;
            }
            HL_LOG(LogLevel::Error, "Server {}: poll failed: {}", m_name, std::strerror(errno));
            return;
        }
        if ((polled[0].revents & POLLIN) != 0) {
            m_turns->ClearPumpBell();
        }
        if ((polled[2].revents & POLLIN) != 0) {
            m_turns->IdleTimerFired();
        }
        if ((polled[1].revents & POLLIN) != 0) {
            m_turns->Add(m_listener->Accept());
        }
        for (size_t i = 0; i < clients.size(); ++i) {
            const auto& client = clients[i];
            const short revents = polled[i + kFirstClient].revents;
            if (client->HasOutbox()) {
                if (!client->FlushOutbox()) {
                    m_turns->Drop(client->Id());
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
                    m_turns->Drop(client->Id());
                }
            } else if ((revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
                m_turns->Drop(client->Id());
            }
        }
    }
}

int ServerChannel::Receive(nk_message* request, nk_arena* arena, const Deadline& deadline, Pending& pending) {
    // Taking the turn also brings the clients up to date, so the first round needs no other look.
    if (const int rc = m_turns->EnterReceive(deadline, m_receiveClients, m_receiveGeneration); rc != NK_EOK) {
        return rc;
    }
    struct Leave {
        ClientTurns& turns;
        ~Leave() { turns.LeaveReceive(); }
    } leave{*m_turns};

    std::vector<UniqueFd> fds;
    const std::vector<uint64_t> noneParked;
    for (bool first = true;; first = false) {
        if (!first && !m_turns->Current(m_receiveClients, m_receiveGeneration)) {
            return NK_ECLOSED;
        }
        m_receivePolled.clear();
        m_receivePolled.push_back({m_turns->ReceiverBell(), POLLIN, 0});
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
            m_turns->ClearReceiverBell();
        }
        // Clients in turn, starting after the one served last: one request each per round.
        const size_t count = m_receiveClients.size();
        const size_t start = m_turns->FirstInTurn(m_receiveClients);
        for (size_t k = 0; k < count; ++k) {
            const auto& client = m_receiveClients[(start + k) % count];
            const short revents = m_receivePolled[(start + k) % count + 1].revents;
            if (client->HasOutbox()) {
                if (!client->FlushOutbox()) {
                    m_turns->Drop(client->Id());
                }
                continue;
            }
            if ((revents & POLLIN) == 0) {
                if ((revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
                    m_turns->Drop(client->Id());
                }
                continue;
            }
            size_t length = 0;
            ParsedFrame frame;
            const ReadOutcome outcome = client->Read(m_receiveBuffer, fds, length, frame, false);
            if (outcome == ReadOutcome::Gone) {
                m_turns->Drop(client->Id());
            }
            if (outcome != ReadOutcome::Request) {
                continue;
            }
            std::string reason;
            const int rc = DeliverFrame(frame, fds, request, arena, reason);
            m_turns->Served(client->Id());
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
    const auto connection = m_turns->Find(pending.client);
    if (!connection) {
        HL_LOG(LogLevel::Debug, "Server {}: client {} has gone before its reply", m_name, pending.client);
        return NK_ECLOSED;
    }
    return connection->SendResponse(pending.sequence, response, arena);
}

pid_t ServerChannel::PeerPid(uint64_t client) {
    const auto connection = m_turns->Find(client);
    if (!connection) {
        return -1;
    }
    ucred credentials{};
    socklen_t length = sizeof(credentials);
    if (::getsockopt(connection->Fd(), SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) {
        return -1;
    }
    return credentials.pid;
}

}  // namespace hos::platform
