#include "ipc/client_connection.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <diagnostics/log.h>
#include <diagnostics/log_rate_limiter.h>
#include <platform/nk_result.h>

#include "core/deadline.h"
#include "ipc/message_codec.h"
#include "ipc/packet_io.h"
#include "task/task.h"

namespace hos::platform {
namespace {

using hos::logger::LogLevel;
using Clock = std::chrono::steady_clock;

// How long a client may leave its answers unread before it is disconnected.
constexpr auto kOutboxLimit = std::chrono::seconds(5);

}  // namespace

ClientConnection::ClientConnection(uint64_t id, UniqueFd fd, bool refused, uid_t uid, pid_t pid,
                                   std::string server, std::function<void()> outboxFilled)
    : m_id(id),
      m_fd(std::move(fd)),
      m_refused(refused),
      m_uid(uid),
      m_pid(pid),
      m_server(std::move(server)),
      m_outboxFilled(std::move(outboxFilled)) {}

ClientConnection::ReadOutcome ClientConnection::Read(std::vector<uint8_t>& buffer, std::vector<UniqueFd>& fds,
                                                     size_t& length, ParsedFrame& frame, bool peekRequests) {
    if (peekRequests && !m_refused) {
        uint8_t head[NK_MESSAGE_HEADER_SIZE];
        const ssize_t got = ::recv(m_fd.Get(), head, sizeof(head), MSG_PEEK | MSG_DONTWAIT);
        if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) {
            return ReadOutcome::Nothing;
        }
        if (got > 0) {
            m_spoken.store(true, std::memory_order_relaxed);
        }
        if (got == static_cast<ssize_t>(sizeof(head)) && DecodeHeader(head).kind == FrameKind::Request) {
            return ReadOutcome::Parked;
        }
    }
    const ReadResult read = ReadPacket(m_fd.Get(), buffer, fds);
    if (read.status != ReadStatus::WouldBlock) {
        m_spoken.store(true, std::memory_order_relaxed);
    }
    if (m_refused && read.status != ReadStatus::WouldBlock) {
        if (read.status != ReadStatus::Closed && read.status != ReadStatus::Failed) {
            Refuse(buffer.data(), read.length, NK_EACCESS, "peer of another user");
        }
        return ReadOutcome::Gone;
    }
    switch (read.status) {
        case ReadStatus::WouldBlock:
            return ReadOutcome::Nothing;
        case ReadStatus::Closed:
        case ReadStatus::Failed:
            return ReadOutcome::Gone;
        case ReadStatus::Oversized:
            Refuse(buffer.data(), kMaxFrameSize, NK_ETOOBIG,
                   "frame larger than " + std::to_string(kMaxFrameSize) + " bytes");
            return ReadOutcome::Handled;
        case ReadStatus::TooManyFds:
            Refuse(buffer.data(), read.length, NK_ETOOBIG, "too many passed handles");
            return ReadOutcome::Handled;
        case ReadStatus::Packet:
            break;
    }
    std::string reason;
    const int rc =
        ParseFrame(std::span<const uint8_t>(buffer.data(), read.length), fds.size(), frame, reason);
    if (rc != NK_EOK) {
        Refuse(buffer.data(), read.length, rc, reason);
        return ReadOutcome::Handled;
    }
    if (frame.header.kind == FrameKind::Resolve) {
        AnswerResolve(frame);
        return ReadOutcome::Handled;
    }
    if (frame.header.kind != FrameKind::Request) {
        Refuse(buffer.data(), read.length, NK_EBADMSG,
               "unexpected frame kind " + std::to_string(static_cast<int>(frame.header.kind)));
        return ReadOutcome::Handled;
    }
    length = read.length;
    return ReadOutcome::Request;
}

void ClientConnection::AnswerResolve(const ParsedFrame& frame) {
    const std::string_view name(reinterpret_cast<const char*>(frame.arena.data()), frame.arena.size());
    const int riid = Task::Self().Resolve(name);
    if (riid < 0) {
        static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
        if (const auto admission = limiter.Admit(static_cast<uint64_t>(m_pid))) {
            HL_LOG(LogLevel::Info, "Server {}: no endpoint answers to \"{}\"{}", m_server, name,
                   admission.Note());
        }
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
    SendOrKeep(std::span(out.parts.data(), out.partCount), {});
}

void ClientConnection::Refuse(const uint8_t* packet, size_t length, int code, const std::string& reason) {
    // A client may send nothing but bad frames: a few lines a second per peer, counting the rest.
    static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
    if (const auto admission = limiter.Admit(static_cast<uint64_t>(m_pid))) {
        HL_LOG(LogLevel::Warning, "Server {}: refused a frame from client {} (pid {}): {} ({:#x}){}",
               m_server, m_id, m_pid, reason, static_cast<uint32_t>(code), admission.Note());
    }
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
    SendOrKeep(std::span(out.parts.data(), out.partCount), {});
}

int ClientConnection::SendResponse(uint32_t sequence, const nk_message* response, const nk_arena* arena) {
    FrameHeader frame;
    frame.kind = FrameKind::Response;
    frame.sequence = sequence;
    OutgoingPacket out;
    std::string reason;
    int rc = PrepareOutgoing(response, arena, frame, out, reason);
    if (rc != NK_EOK) {
        HL_LOG(LogLevel::Error, "Server {}: reply to client {} cannot be sent: {}", m_server, m_id, reason);
        FrameHeader refusal;
        refusal.kind = FrameKind::Refused;
        refusal.sequence = sequence;
        refusal.iid = response != nullptr ? response->iid : 0;
        refusal.mid = response != nullptr ? response->mid : 0;
        refusal.result = rc;
        OutgoingPacket bare;
        PrepareBare(refusal, {}, {}, bare);
        SendOrKeep(std::span(bare.parts.data(), bare.partCount), {});
        return rc;
    }
    rc = SendOrKeep(std::span(out.parts.data(), out.partCount), out.fds);
    if (rc != NK_EOK) {
        HL_LOG(LogLevel::Debug, "Server {}: reply to client {} failed with {:#x}", m_server, m_id,
               static_cast<uint32_t>(rc));
    }
    return rc;
}

int ClientConnection::SendOrKeep(std::span<const iovec> parts, std::span<const int> fds) {
    std::lock_guard lock(m_sendMutex);
    if (m_outbox.empty()) {
        const int rc = SendPacket(m_fd.Get(), parts, fds, Deadline::FromTimeoutMs(0));
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
    if (m_outbox.empty()) {
        m_outboxSince = Clock::now();
    }
    m_outbox.push_back(std::move(frame));
    m_hasOutbox.store(true, std::memory_order_release);
    // Whoever reads the clients now polls this one for room.
    m_outboxFilled();
    return NK_EOK;
}

int ClientConnection::OutboxMsLeft(Clock::time_point now) {
    if (!HasOutbox()) {
        return -1;
    }
    std::lock_guard lock(m_sendMutex);
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(m_outboxSince + kOutboxLimit - now).count();
    return static_cast<int>(std::max<long long>(left, 0));
}

bool ClientConnection::FlushOutbox() {
    std::lock_guard lock(m_sendMutex);
    while (!m_outbox.empty()) {
        OutFrame& frame = m_outbox.front();
        std::vector<int> fds;
        for (const auto& fd : frame.fds) {
            fds.push_back(fd.Get());
        }
        const iovec part{frame.bytes.data(), frame.bytes.size()};
        const int rc = SendPacket(m_fd.Get(), std::span(&part, 1), fds, Deadline::FromTimeoutMs(0));
        if (rc == NK_TRANSPORT_TIMEOUT) {
            break;
        }
        m_outbox.pop_front();
        m_outboxSince = Clock::now();
        if (rc == NK_ECLOSED) {
            return false;
        }
    }
    if (m_outbox.empty()) {
        m_hasOutbox.store(false, std::memory_order_release);
        return true;
    }
    if (Clock::now() - m_outboxSince >= kOutboxLimit) {
        HL_LOG(LogLevel::Warning, "Server {}: client {} does not take its replies; disconnecting it",
               m_server, m_id);
        return false;
    }
    return true;
}

void ClientConnection::Disconnect() {
    ::shutdown(m_fd.Get(), SHUT_RDWR);
}

}  // namespace hos::platform
