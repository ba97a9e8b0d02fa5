#include "ipc/frame.h"

#include <bit>
#include <cstring>

#include <fmt/format.h>

#include <platform/nk_result.h>

namespace hos::platform {
namespace {

static_assert(std::endian::native == std::endian::little,
              "the wire format is little-endian and is copied as it stands");

template <typename T>
void Put(uint8_t* out, size_t offset, T value) {
    std::memcpy(out + offset, &value, sizeof(T));
}

template <typename T>
T Get(const uint8_t* in, size_t offset) {
    T value;
    std::memcpy(&value, in + offset, sizeof(T));
    return value;
}

bool IsKnownKind(uint16_t kind) {
    return kind >= static_cast<uint16_t>(FrameKind::Request) &&
           kind <= static_cast<uint16_t>(FrameKind::Event);
}

}  // namespace

void EncodeHeader(const FrameHeader& header, uint8_t* out24) {
    Put<uint16_t>(out24, 0, header.iid);
    Put<uint16_t>(out24, 2, header.mid);
    Put<uint32_t>(out24, 4, header.sizeFlags);
    Put<uint16_t>(out24, 8, static_cast<uint16_t>(header.kind));
    Put<uint16_t>(out24, 10, header.version);
    Put<uint32_t>(out24, 12, header.arenaSize);
    Put<uint32_t>(out24, 16, header.sequence);
    Put<int32_t>(out24, 20, header.result);
}

FrameHeader DecodeHeader(const uint8_t* in24) {
    FrameHeader header;
    header.iid = Get<uint16_t>(in24, 0);
    header.mid = Get<uint16_t>(in24, 2);
    header.sizeFlags = Get<uint32_t>(in24, 4);
    header.kind = static_cast<FrameKind>(Get<uint16_t>(in24, 8));
    header.version = Get<uint16_t>(in24, 10);
    header.arenaSize = Get<uint32_t>(in24, 12);
    header.sequence = Get<uint32_t>(in24, 16);
    header.result = Get<int32_t>(in24, 20);
    return header;
}

uint32_t CountPassedHandles(const uint8_t* message, uint32_t handleCount) {
    uint32_t passed = 0;
    for (uint32_t i = 0; i < handleCount; ++i) {
        const uint32_t word = Get<uint32_t>(message, NK_MESSAGE_HEADER_SIZE + i * NK_HANDLE_DESC_SIZE);
        if ((word & NK_HANDLE_DESC_HANDLE_MASK) != NK_HANDLE_DESC_INVALID) {
            ++passed;
        }
    }
    return passed;
}

int ParseFrame(std::span<const uint8_t> packet, size_t fdCount, ParsedFrame& out, std::string& reason) {
    if (packet.size() < NK_MESSAGE_HEADER_SIZE) {
        reason = fmt::format("frame of {} bytes is shorter than the 24-byte header", packet.size());
        return NK_EBADMSG;
    }
    if (packet.size() > kMaxFrameSize) {
        reason = fmt::format("frame of {} bytes exceeds the limit of {}", packet.size(), kMaxFrameSize);
        return NK_ETOOBIG;
    }
    const FrameHeader header = DecodeHeader(packet.data());
    const auto kind = static_cast<uint16_t>(header.kind);
    if (!IsKnownKind(kind) || header.version != kFrameVersion) {
        reason = fmt::format("unknown frame kind {} or version {}", kind, header.version);
        return NK_EBADMSG;
    }
    const uint64_t size = header.Size();
    if (size < NK_MESSAGE_HEADER_SIZE) {
        reason = fmt::format("size word gives {} bytes, less than the header", size);
        return NK_EBADMSG;
    }
    if (size + uint64_t{header.arenaSize} != packet.size()) {
        reason = fmt::format("size word {} and arena size {} do not add up to the frame's {} bytes", size,
                             header.arenaSize, packet.size());
        return NK_EBADMSG;
    }
    const uint32_t handles = header.HandleCount();
    if (NK_MESSAGE_HEADER_SIZE + uint64_t{handles} * NK_HANDLE_DESC_SIZE > size) {
        reason = fmt::format("{} handle descriptors do not fit a message of {} bytes", handles, size);
        return NK_EBADMSG;
    }
    if (handles > kMaxHandles) {
        reason = fmt::format("{} handle descriptors exceed the limit of {}", handles, kMaxHandles);
        return NK_ETOOBIG;
    }
    const uint32_t passed = CountPassedHandles(packet.data(), handles);
    if (passed != fdCount) {
        reason = fmt::format("{} handles described but {} passed", passed, fdCount);
        return NK_EBADMSG;
    }
    out.header = header;
    out.message = packet.subspan(0, size);
    out.arena = packet.subspan(size);
    out.passedHandles = passed;
    return NK_EOK;
}

}  // namespace hos::platform
