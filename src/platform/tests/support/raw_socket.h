// A client that talks to a server socket directly, below the platform, to send hand-made frames.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace hos::platform::testing {

class RawSocket {
public:
    explicit RawSocket(const std::string& path);
    ~RawSocket();

    RawSocket(const RawSocket&) = delete;
    RawSocket& operator=(const RawSocket&) = delete;

    bool IsConnected() const { return m_fd >= 0; }
    bool Send(const std::vector<unsigned char>& packet, const std::vector<int>& fds = {});
    // The next packet; nothing when the peer closed or after `timeout`.
    std::optional<std::vector<unsigned char>> Receive(std::chrono::milliseconds timeout);

private:
    int m_fd = -1;
};

}  // namespace hos::platform::testing
