// One client connected to a server channel: its socket and its outbox.
//
// `Read` takes one frame from the socket. A request is left to the caller (or, when the caller
// only looks for other frames, left unread in the socket); everything else is answered here: a
// handshake (Resolve) gets its Resolved answer, a malformed or unexpected frame a Refused one. The
// first frame of a peer of another user is refused, and then the connection reports that it is
// gone, as it does when the client has closed its end.
//
// Answers never block: an answer that does not fit into the socket now waits in the outbox, in
// order, and the `outboxFilled` hook tells whoever reads the clients to poll this one for room.
// Nothing more is read from a client until its outbox has gone out (`OutboxMsLeft` is not
// negative then); a client that takes nothing for 5 seconds has to go (`FlushOutbox` says so).
//
// Ownership: shared by the channel's set of clients and by whoever works on the client a moment
// (a receiver, the pump, a reply); `Disconnect` shuts the socket down at once for all of them, the
// descriptor closes with the last holder.
// Thread: one reader at a time (the holder of the clients' sockets, see client_turns.h); answers
// (`Refuse`, `SendResponse`, `FlushOutbox`) from any thread, ordered by the outbox's lock.
#pragma once

#include <sys/types.h>
#include <sys/uio.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include <platform/nk_message.h>

#include "core/unique_fd.h"
#include "ipc/frame.h"

namespace hos::platform {

class ClientConnection {
public:
    // What reading one frame gave.
    enum class ReadOutcome {
        Nothing,  // no frame was waiting
        Handled,  // a frame was answered here
        Request,  // a request is in the buffer
        Parked,   // a request waits unread in the socket
        Gone,     // the client has closed, failed, or was refused: drop it
    };

    // `server` names the channel in log lines; `uid` and `pid` are the peer's credentials.
    ClientConnection(uint64_t id, UniqueFd fd, bool refused, uid_t uid, pid_t pid, std::string server,
                     std::function<void()> outboxFilled);

    ClientConnection(const ClientConnection&) = delete;
    ClientConnection& operator=(const ClientConnection&) = delete;

    uint64_t Id() const { return m_id; }
    int Fd() const { return m_fd.Get(); }
    uid_t Uid() const { return m_uid; }
    pid_t Pid() const { return m_pid; }
    // True once the client has sent anything; a client that stays silent may be closed for others.
    bool HasSpoken() const { return m_spoken.load(std::memory_order_relaxed); }

    // Reads one frame into `buffer` and `fds`; for a request also sets `length` and `frame`. With
    // `peekRequests` a request stays in the socket (Parked).
    ReadOutcome Read(std::vector<uint8_t>& buffer, std::vector<UniqueFd>& fds, size_t& length,
                     ParsedFrame& frame, bool peekRequests);
    // Tells the client that a frame (`packet`, whose header is echoed when present) was refused.
    void Refuse(const uint8_t* packet, size_t length, int code, const std::string& reason);
    // Sends the response to the request `sequence`, or a Refused frame when it cannot be built.
    // Returns 0, NK_ECLOSED, or the failure of building or sending it.
    int SendResponse(uint32_t sequence, const nk_message* response, const nk_arena* arena);

    // Milliseconds until the oldest waiting answer reaches the time limit (0 when it has), or -1
    // when the outbox is empty.
    int OutboxMsLeft(std::chrono::steady_clock::time_point now);
    bool HasOutbox() const { return m_hasOutbox.load(std::memory_order_acquire); }
    // Sends what waits in the outbox; false when the client has to go (closed, or 5 s without room).
    bool FlushOutbox();
    // Ends the connection for the client and every holder at once.
    void Disconnect();

private:
    struct OutFrame {
        std::vector<uint8_t> bytes;
        std::vector<UniqueFd> fds;
    };

    void AnswerResolve(const ParsedFrame& frame);
    // Sends one frame without waiting; what does not fit now goes to the outbox.
    int SendOrKeep(std::span<const iovec> parts, std::span<const int> fds);

    const uint64_t m_id;
    const UniqueFd m_fd;
    const bool m_refused;  // a peer of another user: its first frame is refused, then it goes
    const uid_t m_uid;
    const pid_t m_pid;
    std::atomic<bool> m_spoken{false};
    const std::string m_server;
    const std::function<void()> m_outboxFilled;

    std::mutex m_sendMutex;  // orders answers: the outbox first, then direct sends
    std::deque<OutFrame> m_outbox;
    std::chrono::steady_clock::time_point m_outboxSince{};
    std::atomic<bool> m_hasOutbox{false};
};

}  // namespace hos::platform
