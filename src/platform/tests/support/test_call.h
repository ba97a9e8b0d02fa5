// Builds one request, calls it through a transport and keeps what came back: the tests' client.
#pragma once

#include <cstdint>
#include <vector>

#include <platform/nk_message.h>
#include <platform/nk_transport.h>

namespace hos::platform::testing {

struct TestRequest {
    uint16_t iid = 1;
    uint16_t mid = 0;
    std::vector<unsigned char> fields;  // bytes after the header and descriptors
    std::vector<unsigned int> handles;  // handles to pass, one descriptor each
    std::vector<unsigned char> arena;   // bytes of the request arena
};

// The response room is 1024 message bytes, 4 handles and 4096 arena bytes.
struct TestResponse {
    int rc = 0;
    std::vector<unsigned char> message;  // the response buffer (its room)
    std::vector<unsigned char> arena;    // the received arena bytes
    const nk_message* Header() const { return reinterpret_cast<const nk_message*>(message.data()); }
    uint32_t U32At(size_t offset) const;
    unsigned int HandleAt(uint32_t index) const;
};

TestResponse CallThrough(NkHosTransport& transport, const TestRequest& request);

// The little-endian bytes of a u32, to put into fields.
std::vector<unsigned char> U32Bytes(uint32_t value);

}  // namespace hos::platform::testing
