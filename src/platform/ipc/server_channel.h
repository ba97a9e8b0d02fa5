// A named server channel: a listening socket in the runtime directory and the clients connected
// to it.
//
// A pump thread of the channel accepts clients (refusing any whose uid differs from the allowed
// one, with a log line), answers the connect handshake from the task's component tree, refuses
// malformed frames with a Refused frame and a log line, and queues well-formed requests. `Receive`
// takes the next queued request from any client; `Reply` answers the client of a received request.
// The pump never blocks on one client, so a bad or slow client cannot stop the others.
//
// Ownership: shared by the handle that names it and by calls running on it. `Shutdown` (on
// KnHandleClose, or destruction) stops the pump, disconnects every client, wakes receivers and
// removes the socket file if it is still ours.
// Thread: all public operations are safe from any thread.
#pragma once

#include <sys/types.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <platform/nk_message.h>

#include "core/deadline.h"
#include "core/unique_fd.h"
#include "ipc/frame.h"

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
    // Sends `response` to the client of `pending`. Returns 0, NK_ECLOSED when that client has
    // gone, or the failure of building or sending the frame (the client is then told of it).
    int Reply(const Pending& pending, const nk_message* response, const nk_arena* arena,
              const Deadline& deadline);
    const std::string& Name() const { return m_name; }

private:
    struct Connection {
        uint64_t id = 0;
        UniqueFd fd;
        uint32_t queued = 0;
        bool refused = false;  // a peer of another user: its first frame is refused, then it goes
    };
    struct QueuedRequest {
        std::shared_ptr<Connection> connection;
        std::vector<uint8_t> packet;
        std::vector<UniqueFd> fds;
    };

    ServerChannel(std::string name, std::string path, ino_t inode, uid_t allowedUid, UniqueFd listenFd,
                  UniqueFd wakeFd);
    static std::shared_ptr<ServerChannel> OpenImpl(const std::string& name, uid_t allowedUid, int& rc);

    void Run();
    void Wake();
    void AcceptClients();
    void ServeClient(const std::shared_ptr<Connection>& connection);
    void HandleFrame(const std::shared_ptr<Connection>& connection, size_t length,
                     std::vector<UniqueFd>& fds);
    void AnswerResolve(Connection& connection, const ParsedFrame& frame);
    void Refuse(Connection& connection, const uint8_t* packet, size_t length, int code,
                const std::string& reason);
    void Drop(uint64_t id);
    std::shared_ptr<Connection> FindConnection(uint64_t id);

    const std::string m_name;
    const std::string m_path;
    const ino_t m_inode;
    const uid_t m_allowedUid;
    UniqueFd m_listenFd;
    UniqueFd m_wakeFd;
    std::vector<uint8_t> m_buffer;  // the pump's packet buffer

    std::mutex m_mutex;
    std::condition_variable m_requestReady;
    bool m_stopping = false;
    uint64_t m_nextClient = 1;
    std::map<uint64_t, std::shared_ptr<Connection>> m_connections;
    std::deque<QueuedRequest> m_queue;

    std::mutex m_shutdownMutex;
    std::thread m_thread;
};

}  // namespace hos::platform
