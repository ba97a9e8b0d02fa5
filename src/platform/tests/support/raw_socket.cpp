#include "support/raw_socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace hos::platform::testing {

RawSocket::RawSocket(const std::string& path) {
    m_fd = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
    if (m_fd >= 0 && ::connect(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        ::close(m_fd);
        m_fd = -1;
    }
}

RawSocket::~RawSocket() {
    if (m_fd >= 0) {
        ::close(m_fd);
    }
}

bool RawSocket::Send(const std::vector<unsigned char>& packet, const std::vector<int>& fds) {
    iovec part{const_cast<unsigned char*>(packet.data()), packet.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    std::vector<unsigned char> control(CMSG_SPACE(sizeof(int) * fds.size()));
    if (!fds.empty()) {
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr* item = CMSG_FIRSTHDR(&message);
        item->cmsg_level = SOL_SOCKET;
        item->cmsg_type = SCM_RIGHTS;
        item->cmsg_len = CMSG_LEN(sizeof(int) * fds.size());
        std::memcpy(CMSG_DATA(item), fds.data(), sizeof(int) * fds.size());
    }
    return ::sendmsg(m_fd, &message, MSG_NOSIGNAL) == static_cast<ssize_t>(packet.size());
}

std::optional<std::vector<unsigned char>> RawSocket::Receive(std::chrono::milliseconds timeout) {
    pollfd waiting{m_fd, POLLIN, 0};
    if (::poll(&waiting, 1, static_cast<int>(timeout.count())) <= 0) {
        return std::nullopt;
    }
    std::vector<unsigned char> buffer(256 * 1024);
    const ssize_t got = ::recv(m_fd, buffer.data(), buffer.size(), 0);
    if (got <= 0) {
        return std::nullopt;
    }
    buffer.resize(static_cast<size_t>(got));
    return buffer;
}

std::vector<unsigned char> RawFrame(uint16_t kind, uint16_t iid, uint16_t mid, uint32_t sequence,
                                    const std::vector<unsigned char>& body,
                                    const std::vector<unsigned char>& arena, int32_t result, uint32_t size) {
    std::vector<unsigned char> frame(24);
    const uint32_t sizeWord = size != 0 ? size : static_cast<uint32_t>(24 + body.size());
    const uint16_t version = 1;
    const auto arenaSize = static_cast<uint32_t>(arena.size());
    std::memcpy(&frame[0], &iid, 2);
    std::memcpy(&frame[2], &mid, 2);
    std::memcpy(&frame[4], &sizeWord, 4);
    std::memcpy(&frame[8], &kind, 2);
    std::memcpy(&frame[10], &version, 2);
    std::memcpy(&frame[12], &arenaSize, 4);
    std::memcpy(&frame[16], &sequence, 4);
    std::memcpy(&frame[20], &result, 4);
    frame.insert(frame.end(), body.begin(), body.end());
    frame.insert(frame.end(), arena.begin(), arena.end());
    return frame;
}

}  // namespace hos::platform::testing
