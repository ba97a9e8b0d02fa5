// A client that talks to a server socket directly, below the platform, to send hand-made frames.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstring>
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

// Frame kinds as the wire numbers them.
enum RawKind : uint16_t { kRawRequest = 1, kRawResponse = 2, kRawResolve = 3, kRawResolved = 4, kRawRefused = 5 };

// One packet as the wire carries it: the 24-byte header (little-endian, as this machine), `body`
// (descriptors and fields) and `arena`. `size` overrides the size word (header and body) when not 0.
std::vector<unsigned char> RawFrame(uint16_t kind, uint16_t iid, uint16_t mid, uint32_t sequence,
                                    const std::vector<unsigned char>& body = {},
                                    const std::vector<unsigned char>& arena = {}, int32_t result = 0,
                                    uint32_t size = 0);

// The field of type T at `offset` of a packet; zero when the packet is shorter.
template <typename T>
T FrameField(const std::vector<unsigned char>& packet, std::size_t offset) {
    T value{};
    if (packet.size() >= offset + sizeof(T)) {
        std::memcpy(&value, &packet[offset], sizeof(T));
    }
    return value;
}

}  // namespace hos::platform::testing
