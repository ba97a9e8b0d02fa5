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

// A packet of a frame header (kind, sequence) with the given size word and arena size, followed
// by `tail`.
std::vector<unsigned char> MakePacket(uint16_t kind, uint32_t sizeWord, uint32_t arenaSize, uint32_t sequence,
                                      const std::vector<unsigned char>& tail);
// The result field (offset 20) and kind (offset 8) of a received frame.
int ResultOf(const std::vector<unsigned char>& packet);
uint16_t KindOf(const std::vector<unsigned char>& packet);

}  // namespace hos::platform::testing
