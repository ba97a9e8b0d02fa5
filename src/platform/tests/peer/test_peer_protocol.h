// The method ids and message sizes that the test peer serves, shared by the peer and the tests.
#pragma once

#include <cstdint>

namespace hos::platform::test_peer {

inline constexpr const char* kEchoEndpointFull = "echo.echo";
inline constexpr const char* kEchoEndpointShort = "echo";
inline constexpr const char* kEchoInterfaceType = "hl.test.Echo";
inline constexpr unsigned int kEchoRiid = 1;

// Room of the peer's request buffer: message bytes, handle descriptors, arena bytes.
inline constexpr uint32_t kRequestRoom = 1024;
inline constexpr uint32_t kRequestHandleRoom = 4;
inline constexpr uint32_t kArenaRoom = 4096;

enum Method : uint16_t {
    kEcho = 0,          // answers with the request as it came, arena and handles included
    kWrongMid = 1,      // answers with mid + 1
    kSlowEcho = 2,      // sleeps the milliseconds of the u32 at offset 24, then echoes
    kHang = 3,          // prints "hanging" and never answers
    kGiveHandle = 4,    // answers 40 bytes with one handle: an end of a new object
    kRaise = 5,         // raises the u32 at offset 24 on the kept end of that object
    kCloseKept = 6,     // closes the kept end
    kUseHandle = 7,     // raises 0x10000 on the passed handle; u32 result at offset 24
    kFail = 8,          // answers with the server-failure word
    kWrongIid = 10,     // answers with iid + 1
    kCloseServer = 11,  // closes the server channel without answering, prints "closed", then idles
};

}  // namespace hos::platform::test_peer
