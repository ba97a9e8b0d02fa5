#include "ipc/packet_io.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include <platform/nk_result.h>
#include "ipc/frame.h"

namespace hos::platform {
namespace {

constexpr size_t kControlSize = CMSG_SPACE(sizeof(int) * kMaxHandles);

void CollectFds(msghdr& message, std::vector<UniqueFd>& fds) {
    for (cmsghdr* item = CMSG_FIRSTHDR(&message); item != nullptr; item = CMSG_NXTHDR(&message, item)) {
        if (item->cmsg_level != SOL_SOCKET || item->cmsg_type != SCM_RIGHTS) {
            continue;
        }
        const size_t count = (item->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        const auto* data = reinterpret_cast<const unsigned char*>(CMSG_DATA(item));
        for (size_t i = 0; i < count; ++i) {
            int received = -1;
            std::memcpy(&received, data + i * sizeof(int), sizeof(int));
            fds.emplace_back(received);
        }
    }
}

}  // namespace

ReadResult ReadPacket(int fd, std::vector<uint8_t>& buffer, std::vector<UniqueFd>& fds, bool block) {
    fds.clear();
    buffer.resize(kMaxFrameSize + 1);
    alignas(cmsghdr) unsigned char control[kControlSize];
    iovec part{buffer.data(), buffer.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof(control);
    ssize_t got = -1;
    do {
        got = ::recvmsg(fd, &message, MSG_CMSG_CLOEXEC | (block ? 0 : MSG_DONTWAIT));
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        if (errno == EAGAIN || errno == EWOULDBLOCK) {
            return {ReadStatus::WouldBlock, 0};
        }
        if (errno == ECONNRESET || errno == ENOTCONN || errno == EPIPE) {
            return {ReadStatus::Closed, 0};
        }
        return {ReadStatus::Failed, 0};
    }
    CollectFds(message, fds);
    if (got == 0) {
        // A zero-length packet cannot be a frame; on SOCK_SEQPACKET it is also the end of stream.
        return {ReadStatus::Closed, 0};
    }
    if ((message.msg_flags & MSG_TRUNC) != 0 || static_cast<size_t>(got) > kMaxFrameSize) {
        return {ReadStatus::Oversized, static_cast<size_t>(got)};
    }
    if ((message.msg_flags & MSG_CTRUNC) != 0) {
        return {ReadStatus::TooManyFds, static_cast<size_t>(got)};
    }
    return {ReadStatus::Packet, static_cast<size_t>(got)};
}

int SendPacket(int fd, std::span<const iovec> parts, std::span<const int> fds, const Deadline& deadline) {
    if (fds.size() > kMaxHandles) {
        return NK_ETOOBIG;
    }
    size_t total = 0;
    for (const auto& part : parts) {
        total += part.iov_len;
    }
    if (total > kMaxFrameSize) {
        return NK_ETOOBIG;
    }
    alignas(cmsghdr) unsigned char control[kControlSize];
    msghdr message{};
    message.msg_iov = const_cast<iovec*>(parts.data());
    message.msg_iovlen = parts.size();
    if (!fds.empty()) {
        message.msg_control = control;
        message.msg_controllen = CMSG_SPACE(sizeof(int) * fds.size());
        cmsghdr* item = CMSG_FIRSTHDR(&message);
        item->cmsg_level = SOL_SOCKET;
        item->cmsg_type = SCM_RIGHTS;
        item->cmsg_len = CMSG_LEN(sizeof(int) * fds.size());
        std::memcpy(CMSG_DATA(item), fds.data(), sizeof(int) * fds.size());
    }
    for (;;) {
        const ssize_t sent = ::sendmsg(fd, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) {
            return NK_EOK;
        }
        if (errno == EINTR) {
            continue;
        }
        if (errno == EPIPE || errno == ECONNRESET || errno == ENOTCONN || errno == ECONNREFUSED) {
            return NK_ECLOSED;
        }
        if (errno == EMSGSIZE || errno == ENOBUFS) {
            return NK_ETOOBIG;
        }
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            return NK_EFAIL;
        }
        pollfd waiting{fd, POLLOUT, 0};
        const int ready = ::poll(&waiting, 1, deadline.RemainingPollMs());
        if (ready == 0) {
            return NK_TRANSPORT_TIMEOUT;
        }
        if (ready > 0 && (waiting.revents & (POLLHUP | POLLERR)) != 0 && (waiting.revents & POLLOUT) == 0) {
            return NK_ECLOSED;
        }
    }
}

int WaitReadable(int fd, const Deadline& deadline) {
    for (;;) {
        pollfd waiting{fd, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, deadline.RemainingPollMs());
        if (ready >= 0) {
            return ready > 0 ? 1 : 0;
        }
        if (errno != EINTR) {
            return -1;
        }
    }
}

UniqueFd MakeSeqPacketSocket() {
    UniqueFd fd(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (fd.IsValid()) {
        TuneSocketBuffers(fd.Get());
    }
    return fd;
}

void TuneSocketBuffers(int fd) {
    // The kernel doubles the value and caps it; the default already fits a frame on most systems.
    const int size = static_cast<int>(kMaxFrameSize + 4096);
    ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &size, sizeof(size));
    ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &size, sizeof(size));
}

}  // namespace hos::platform
