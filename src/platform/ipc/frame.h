// The wire frame of the hosted platform: one SOCK_SEQPACKET packet holds one nk_message followed
// by its arena bytes; handles travel beside it as SCM_RIGHTS file descriptors, one for each handle
// descriptor that is not invalid, in descriptor order.
//
// The 16 platform bytes of the header (offset 8) carry, little-endian:
//   8  u16 kind   (FrameKind)        12 u32 arena size in bytes
//   10 u16 version (kFrameVersion)   16 u32 sequence number of the call
//                                    20 i32 result (Refused, Resolved) or event mask (Event)
// Free functions and value types; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <platform/nk_message.h>

namespace hos::platform {

enum class FrameKind : uint16_t {
    Request = 1,   // client -> server: a call
    Response = 2,  // server -> client: its answer
    Resolve = 3,   // client -> server: arena holds a name to resolve to a riid
    Resolved = 4,  // server -> client: result, and the riid as u32 at offset 24
    Refused = 5,   // server -> client: the request was refused with the result code
    Event = 6,     // between object ends: raised event mask
};

inline constexpr uint16_t kFrameVersion = 1;
// Largest packet either side sends or accepts: header, descriptors, fields and arena.
inline constexpr size_t kMaxFrameSize = 196608;
// Most handle descriptors a message may carry.
inline constexpr uint32_t kMaxHandles = 64;
inline constexpr size_t kResolvedFrameSize = NK_MESSAGE_HEADER_SIZE + 4;

struct FrameHeader {
    uint16_t iid = 0;
    uint16_t mid = 0;
    uint32_t sizeFlags = 0;
    FrameKind kind = FrameKind::Request;
    uint16_t version = kFrameVersion;
    uint32_t arenaSize = 0;
    uint32_t sequence = 0;
    int32_t result = 0;

    uint32_t Size() const { return sizeFlags & NK_MESSAGE_SIZE_MASK; }
    uint32_t HandleCount() const { return (sizeFlags >> NK_MESSAGE_HANDLES_SHIFT) & NK_MESSAGE_HANDLES_MASK; }
};

void EncodeHeader(const FrameHeader& header, uint8_t* out24);
FrameHeader DecodeHeader(const uint8_t* in24);

// A frame whose structure has been checked: the spans point into the packet that was read.
struct ParsedFrame {
    FrameHeader header;
    std::span<const uint8_t> message;  // header included, Size() bytes
    std::span<const uint8_t> arena;
    uint32_t passedHandles = 0;  // descriptors that are not invalid
};

// Checks a packet: header present, known kind and version, size word against the real length,
// handle descriptors inside the message, passed descriptors matching `fdCount`. On failure returns
// NK_EBADMSG or NK_ETOOBIG and describes the fault in `reason`.
int ParseFrame(std::span<const uint8_t> packet, size_t fdCount, ParsedFrame& out, std::string& reason);

// Counts the descriptors of `message` (Size() bytes, HandleCount() descriptors) that carry a
// handle.
uint32_t CountPassedHandles(const uint8_t* message, uint32_t handleCount);

}  // namespace hos::platform
