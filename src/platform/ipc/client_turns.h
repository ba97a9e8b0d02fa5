// The clients of a server channel and whose turn it is to read their sockets.
//
// Two may read the clients' sockets: a receiving thread (a `Receive` of the channel) and the
// channel's pump thread. They never read at the same time; who holds the sockets now is one state:
//
//   Pump        the pump reads: it answers handshakes and refuses malformed frames, and leaves
//               requests in their sockets. A channel starts so.
//   ToReceiver  a receiver has come while the pump reads; the pump lets go at its next turn, and
//               the receiver holds then.
//   Receiver    one receiver reads; any other receiver waits for its turn.
//   Nobody      the last receiver has left. If none comes for 2 ms (the serving code is busy with a
//               request), the idle timer hands the sockets back to the pump.
//   Stopping    the channel shuts down: nobody reads again, and every wait for a turn ends.
//
// The clients are a set of connections with a generation that changes whenever one comes or goes;
// a holder polls a copy of the set (`Current`) and takes a new copy when the generation has moved.
// Among the clients with a request waiting the receiver takes them in turn, starting after the one
// it served last (`FirstInTurn`, `Served`), so a client that floods gets its share and no more.
//
// Connections are bounded (ConnectionLimits): in total and per uid, with room kept for the
// process's other descriptors. A connection beyond a bound takes the place of the oldest one that
// has never sent anything (of its uid when that uid is at its bound), or is closed when every other
// has spoken. A connection that sends nothing within a few seconds of connecting is closed
// (`DropSilent`), so idle connections never keep a client that speaks out.
//
// Bells (eventfds) wake the two readers: the pump's when a receiver wants the sockets, the
// receiver's when the clients change; both when the channel stops or an answer has to wait in a
// client's outbox (whoever holds the sockets then polls that client for room).
//
// Ownership: owned by its server channel; connections are shared with whoever works on one.
// Thread: the holder state and the set of clients are safe from any thread. `PumpTurn` and
// `IdleTimerFired` belong to the pump thread; `FirstInTurn` and `Served` to the receiver holding.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/deadline.h"
#include "core/unique_fd.h"
#include "ipc/client_connection.h"
#include "ipc/server_listener.h"

namespace hos::platform {

// The bounds on a server channel's connections.
struct ConnectionLimits {
    std::size_t total = 0;
    std::size_t perUid = 0;
    std::chrono::milliseconds silent{0};  // how long a new connection may stay silent

    // Raises this process's soft descriptor limit to the hard one (once), and gives the bounds that
    // leave room under it: half of what remains above 64 descriptors, at most 4096, and per uid half
    // of that; 5 seconds of silence.
    static ConnectionLimits ForThisProcess();
};

class ClientTurns {
public:
    // What the pump does in one turn.
    enum class PumpRole { Read, Wait, Stop };
    using ClientList = std::vector<std::shared_ptr<ClientConnection>>;

    // `server` names the channel in log lines. Null with `rc` set on failure (logged).
    static std::unique_ptr<ClientTurns> Create(std::string server, ConnectionLimits limits, int& rc);

    ClientTurns(const ClientTurns&) = delete;
    ClientTurns& operator=(const ClientTurns&) = delete;

    // Waits until `deadline` for the receiver's turn and takes it, bringing `clients` up to date as
    // `Current` does. Returns 0 (the caller holds the sockets until LeaveReceive),
    // NK_TRANSPORT_TIMEOUT, or NK_ECLOSED when stopping.
    int EnterReceive(const Deadline& deadline, ClientList& clients, uint64_t& generation);
    void LeaveReceive();
    int ReceiverBell() const { return m_receiverBell.Get(); }
    void ClearReceiverBell() const;

    // At the top of each pump round: lets a receiver that waits have the sockets.
    PumpRole PumpTurn();
    // The idle timer has fired: the pump holds again if no receiver came for 2 ms.
    void IdleTimerFired();
    int PumpBell() const { return m_pumpBell.Get(); }
    int IdleTimer() const { return m_idleTimer.Get(); }
    void ClearPumpBell() const;

    // Sets Stopping and wakes both readers. False when the channel was stopping already.
    bool Stop();

    // Adds the peers within the bounds (see above).
    void Add(std::vector<ServerListener::Peer> peers);
    // Closes the connections that have sent nothing within the silent time. Returns the
    // milliseconds until the next one is due, or -1 when none is waiting. Pump thread.
    int DropSilent();
    // Brings `clients` up to date when the set has changed since `generation`. False when stopping.
    bool Current(ClientList& clients, uint64_t& generation);
    std::shared_ptr<ClientConnection> Find(uint64_t id);
    void Drop(uint64_t id);
    // The ids of clients dropped since the last call (at most `room`); recorded only once this was
    // called once, so a server that never asks keeps no list.
    std::vector<uint64_t> TakeDropped(size_t room);
    // Disconnects every client at once (when the channel stops).
    void DropAll();
    // The index in `clients` of the first to read: the one after the client served last.
    size_t FirstInTurn(const ClientList& clients) const {
        size_t start = 0;
        while (start < clients.size() && clients[start]->Id() <= m_lastServed) {
            ++start;
        }
        return start;
    }
    void Served(uint64_t id) { m_lastServed = id; }

private:
    enum class Holder { Pump, ToReceiver, Receiver, Nobody, Stopping };

    ClientTurns(std::string server, ConnectionLimits limits, UniqueFd pumpBell, UniqueFd receiverBell,
                UniqueFd idleTimer);
    // Under m_mutex: the connections of `uid`.
    std::size_t UidCount(uid_t uid) const {
        const auto found = m_perUid.find(uid);
        return found != m_perUid.end() ? found->second : 0;
    }
    // Under m_mutex: makes room for a connection of `uid`; false when there is none.
    bool MakeRoom(uid_t uid);
    // Under m_mutex: removes a client and disconnects it.
    void EraseLocked(std::map<uint64_t, std::shared_ptr<ClientConnection>>::iterator client);
    void RingBoth() const;
    // Under m_mutex.
    void CopyClients(ClientList& clients, uint64_t& generation) const;
    void ArmIdleTimer(std::chrono::nanoseconds after);

    const std::string m_server;
    const ConnectionLimits m_limits;
    const UniqueFd m_pumpBell;
    const UniqueFd m_receiverBell;
    const UniqueFd m_idleTimer;
    std::atomic<bool> m_idleTimerArmed{false};
    std::atomic<int64_t> m_leftReceiveAt{0};  // steady clock, nanoseconds

    std::mutex m_mutex;
    std::condition_variable m_turnChanged;
    Holder m_holder = Holder::Pump;
    uint64_t m_nextClient = 1;
    uint64_t m_generation = 0;  // changes whenever a client comes or goes
    std::map<uint64_t, std::shared_ptr<ClientConnection>> m_clients;
    std::map<uid_t, std::size_t> m_perUid;
    // Connections not yet known to have spoken, in the order they came, with when they must have.
    std::deque<std::pair<std::chrono::steady_clock::time_point, uint64_t>> m_silent;
    bool m_recordDropped = false;
    std::vector<uint64_t> m_dropped;

    uint64_t m_lastServed = 0;  // the receiver's: the client of the last request received
};

}  // namespace hos::platform
