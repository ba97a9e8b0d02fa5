#include "ipc/client_channel.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

#include <diagnostics/log.h>
#include <platform/i_service_registry.h>
#include <platform/nk_result.h>
#include <platform/runtime_directory.h>

#include "ipc/frame.h"
#include "ipc/message_codec.h"
#include "ipc/packet_io.h"

namespace hos::platform::client_channel {
namespace {

using hos::logger::LogLevel;

std::vector<uint8_t>& ThreadBuffer() {
    thread_local std::vector<uint8_t> buffer;
    return buffer;
}

// Waits for the frame answering `sequence`, dropping stale frames of earlier calls that ran out
// of time. Returns 0 with `frame` pointing into the thread's buffer, or a failure.
int AwaitAnswer(int fd, uint32_t sequence, const Deadline& deadline, int timeoutCode, ParsedFrame& frame,
                std::vector<UniqueFd>& fds) {
    auto& buffer = ThreadBuffer();
    for (;;) {
        // Without a time limit the read itself waits (the channel's socket blocks), which saves a
        // poll per call; with one, poll keeps the time.
        const bool block = deadline.IsInfinite();
        if (!block) {
            const int ready = WaitReadable(fd, deadline);
            if (ready == 0) {
                return timeoutCode;
            }
            if (ready < 0) {
                return NK_EFAIL;
            }
        }
        const ReadResult read = ReadPacket(fd, buffer, fds, block);
        if (block && read.status == ReadStatus::WouldBlock && WaitReadable(fd, deadline) < 0) {
            return NK_EFAIL;  // a channel whose socket does not block (one passed in by a peer)
        }
        const bool hasHeader = read.length >= NK_MESSAGE_HEADER_SIZE;
        const bool ours = hasHeader && DecodeHeader(buffer.data()).sequence == sequence;
        switch (read.status) {
            case ReadStatus::WouldBlock:
                continue;
            case ReadStatus::Closed:
                HL_LOG(LogLevel::Warning, "Channel: the server closed the channel or has died");
                return NK_ECLOSED;
            case ReadStatus::Failed:
                return NK_EFAIL;
            case ReadStatus::Oversized:
            case ReadStatus::TooManyFds:
                if (!ours) {
                    continue;
                }
                HL_LOG(LogLevel::Warning, "Channel: refused an answer too large or with too many handles");
                return NK_ETOOBIG;
            case ReadStatus::Packet:
                break;
        }
        std::string reason;
        const int rc = ParseFrame(std::span(buffer.data(), read.length), fds.size(), frame, reason);
        if (rc != NK_EOK) {
            if (hasHeader && !ours) {
                continue;
            }
            HL_LOG(LogLevel::Warning, "Channel: refused a malformed answer: {}", reason);
            return rc;
        }
        // A refusal whose sequence the server could not read (a frame shorter than its header)
        // carries 0, which no call uses: it can only be meant for the call waiting now.
        const bool unreadableRefused = frame.header.kind == FrameKind::Refused && frame.header.sequence == 0;
        if (frame.header.sequence != sequence && !unreadableRefused) {
            HL_LOG(LogLevel::Debug, "Channel: dropped a stale answer to call {}", frame.header.sequence);
            fds.clear();
            continue;
        }
        return NK_EOK;
    }
}

}  // namespace

int Connect(std::string_view server, const Deadline& deadline, UniqueFd& out) {
    if (!IsValidPlatformName(server)) {
        HL_LOG(LogLevel::Error, "Channel: invalid server name \"{}\"", server);
        return NK_EINVAL;
    }
    const auto path = runtime_directory::ServerSocketPath(runtime_directory::Path(), server);
    if (!path) {
        return NK_EINVAL;
    }
    UniqueFd fd = MakeSeqPacketSocket();
    if (!fd.IsValid()) {
        return NK_ENOMEM;
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path->c_str(), path->size() + 1);
    for (;;) {
        if (::connect(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) {
            // Every other use of the socket passes MSG_DONTWAIT; a call without a time limit waits
            // in its read.
            ::fcntl(fd.Get(), F_SETFL, ::fcntl(fd.Get(), F_GETFL) & ~O_NONBLOCK);
            out = std::move(fd);
            return NK_EOK;
        }
        switch (errno) {
            case EINTR:
                continue;
            case ENOENT:
            case ECONNREFUSED:
            case ENOTDIR:
                return NK_ENOTFOUND;
            case EACCES:
            case EPERM:
                HL_LOG(LogLevel::Error, "Channel: no permission to reach server {}", server);
                return NK_EACCESS;
            case EAGAIN:
                // The server's backlog is full: it is there but busy.
                if (deadline.HasPassed()) {
                    return NK_ETIMEOUT;
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                continue;
            default:
                HL_LOG(LogLevel::Error, "Channel: cannot connect to {}: {}", server, std::strerror(errno));
                return NK_EFAIL;
        }
    }
}

int Resolve(HandleObject& channel, std::string_view name, const Deadline& deadline, unsigned int& riid) {
    std::lock_guard lock(channel.CallMutex());
    FrameHeader request;
    request.kind = FrameKind::Resolve;
    request.iid = NK_IID_ANY;
    request.sequence = channel.NextSequence();
    OutgoingPacket out;
    PrepareBare(request, {}, std::span(reinterpret_cast<const uint8_t*>(name.data()), name.size()), out);
    int rc = SendPacket(channel.Fd(), std::span(out.parts.data(), out.partCount), {}, deadline);
    if (rc != NK_EOK) {
        return rc == NK_TRANSPORT_TIMEOUT ? NK_ETIMEOUT : rc;
    }
    ParsedFrame frame;
    std::vector<UniqueFd> fds;
    rc = AwaitAnswer(channel.Fd(), request.sequence, deadline, NK_ETIMEOUT, frame, fds);
    if (rc != NK_EOK) {
        return rc;
    }
    if (frame.header.kind == FrameKind::Refused) {
        return frame.header.result < 0 ? frame.header.result : NK_EBADMSG;
    }
    if (frame.header.kind != FrameKind::Resolved || frame.message.size() < kResolvedFrameSize) {
        HL_LOG(LogLevel::Warning, "Channel: the handshake answer is malformed");
        return NK_EBADMSG;
    }
    if (frame.header.result != NK_EOK) {
        return frame.header.result < 0 ? frame.header.result : NK_EBADMSG;
    }
    uint32_t value = 0;
    std::memcpy(&value, frame.message.data() + NK_MESSAGE_HEADER_SIZE, sizeof(value));
    riid = value;
    return NK_EOK;
}

int Call(HandleObject& channel, NkHosTransport* transport, const nk_message* request,
         const nk_arena* requestArena, nk_message* response, nk_arena* responseArena) {
    if (response == nullptr) {
        return NK_EINVAL;
    }
    std::lock_guard lock(channel.CallMutex());
    FrameHeader frame;
    frame.kind = FrameKind::Request;
    frame.sequence = channel.NextSequence();
    transport->sequence = frame.sequence;
    OutgoingPacket out;
    std::string reason;
    int rc = PrepareOutgoing(request, requestArena, frame, out, reason);
    if (rc != NK_EOK) {
        HL_LOG(LogLevel::Error, "Call: the request cannot be sent: {}", reason);
        return rc;
    }
    const Deadline deadline = Deadline::FromTimeoutMs(transport->sendTimeoutMs);
    rc = SendPacket(channel.Fd(), std::span(out.parts.data(), out.partCount), out.fds, deadline);
    if (rc != NK_EOK) {
        if (rc == NK_ECLOSED) {
            HL_LOG(LogLevel::Warning, "Call: the server closed the channel or has died");
        }
        return rc;
    }
    ParsedFrame answer;
    std::vector<UniqueFd> fds;
    rc = AwaitAnswer(channel.Fd(), frame.sequence, deadline, NK_TRANSPORT_TIMEOUT, answer, fds);
    if (rc != NK_EOK) {
        return rc;
    }
    if (answer.header.kind == FrameKind::Refused) {
        HL_LOG(LogLevel::Warning, "Call: the server refused the request with {:#x}",
               static_cast<uint32_t>(answer.header.result));
        return answer.header.result < 0 ? answer.header.result : NK_EBADMSG;
    }
    if (answer.header.kind != FrameKind::Response) {
        HL_LOG(LogLevel::Warning, "Call: unexpected answer kind {}", static_cast<int>(answer.header.kind));
        return NK_EBADMSG;
    }
    if ((request->iid != NK_IID_ANY && answer.header.iid != request->iid) ||
        answer.header.mid != request->mid) {
        HL_LOG(LogLevel::Warning,
               "Call: the response (iid {}, mid {}) does not match the request (iid {}, mid {})",
               answer.header.iid, answer.header.mid, request->iid, request->mid);
        return NK_EMISMATCH;
    }
    rc = DeliverFrame(answer, fds, response, responseArena, reason);
    if (rc != NK_EOK) {
        HL_LOG(LogLevel::Warning, "Call: the response is refused: {}", reason);
    }
    return rc;
}

}  // namespace hos::platform::client_channel
