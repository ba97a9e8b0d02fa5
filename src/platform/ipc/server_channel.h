// A named server channel: a listening socket in the runtime directory and the clients connected
// to it.
//
// `Receive` reads the next request straight from the clients' sockets on the caller's thread: no
// queue and no other thread between the socket and the code that serves it. Among clients with a
// request waiting it takes them in turn (round robin), one request each, so a client that floods
// gets its share and no more. While it waits it also answers handshakes and refuses malformed
// frames.
//
// A pump thread accepts clients (refusing any whose uid differs from the allowed one, with a log
// line). While no `Receive` runs for a short while (the serving code is busy), it also answers
// handshakes and refuses malformed frames; it leaves requests in their sockets for the next
// `Receive`, so the server never holds more than one request of a client.
//
// Answers never block the serving thread: an answer that does not fit into a client's socket
// waits in that client's outbox, and the client is not read from until the outbox has gone out; a
// client that takes nothing for 5 seconds is disconnected.
//
// The channel puts three parts together and runs the loops of their two readers (the pump's and
// the receiver's): the listening socket (server_listener.h), each client with its outbox
// (client_connection.h), and the clients with whose turn it is to read them (client_turns.h).
//
// Ownership: shared by the handle that names it and by calls running on it. `Shutdown` (on
// KnHandleClose, or destruction) stops the pump, disconnects every client at once, wakes a
// receiver and removes the socket file if it is still ours.
// Thread: all public operations are safe from any thread; receivers take turns.
#pragma once

#include <poll.h>
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <platform/nk_message.h>

#include "core/deadline.h"
#include "core/unique_fd.h"
#include "ipc/client_turns.h"
#include "ipc/server_listener.h"

namespace hos::platform {

class ServerChannel {
public:
    struct Pending {
        uint64_t client = 0;
        uint32_t sequence = 0;
    };

    // Binds the name (replacing a stale socket of a dead server) and starts the pump. Only peers
    // of this process's effective uid are served. Null with `rc` set on failure (logged).
    static std::shared_ptr<ServerChannel> Open(const std::string& name, int& rc);
    // The same with another allowed uid, so that a test can watch a refusal without a second user.
    static std::shared_ptr<ServerChannel> OpenForTesting(const std::string& name, uid_t allowedUid, int& rc);
    ~ServerChannel();

    ServerChannel(const ServerChannel&) = delete;
    ServerChannel& operator=(const ServerChannel&) = delete;

    void Shutdown();
    // Waits for the next request until `deadline`. Returns 0 (request delivered, `pending` set),
    // NK_TRANSPORT_TIMEOUT, or NK_ECLOSED after Shutdown. A request that does not fit the caller's
    // room is refused to its client and skipped.
    int Receive(nk_message* request, nk_arena* arena, const Deadline& deadline, Pending& pending);
    // Sends `response` to the client of `pending` without waiting for room (see the outbox above).
    // Returns 0, NK_ECLOSED when that client has gone, or the failure of building or sending the
    // frame (the client is then told of it with a Refused frame).
    int Reply(const Pending& pending, const nk_message* response, const nk_arena* arena);
    // The ids (as `pending.client` gives them) of clients whose connection has ended since the last
    // call, at most `room`; the channel keeps that list only once this was called once.
    std::vector<uint64_t> TakeClosedClients(size_t room) { return m_turns->TakeDropped(room); }
    // The process id of the client `client` as the kernel gave it when it connected (SO_PEERCRED),
    // or -1 when that client has gone.
    pid_t PeerPid(uint64_t client);
    const std::string& Name() const { return m_name; }

private:
    ServerChannel(std::string name, std::unique_ptr<ServerListener> listener,
                  std::unique_ptr<ClientTurns> turns);
    static std::shared_ptr<ServerChannel> OpenImpl(const std::string& name, uid_t allowedUid, int& rc);

    // The pump thread.
    void Run();

    const std::string m_name;
    const std::unique_ptr<ServerListener> m_listener;
    const std::unique_ptr<ClientTurns> m_turns;
    std::vector<uint8_t> m_pumpBuffer;

    // Owned by the receiver holding the clients' sockets.
    std::vector<uint8_t> m_receiveBuffer;
    ClientTurns::ClientList m_receiveClients;
    uint64_t m_receiveGeneration = ~uint64_t{0};
    std::vector<pollfd> m_receivePolled;

    std::mutex m_shutdownMutex;
    std::thread m_thread;
};

}  // namespace hos::platform
