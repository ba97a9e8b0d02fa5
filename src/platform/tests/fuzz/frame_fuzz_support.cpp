#include "fuzz/frame_fuzz_support.h"

#include <fcntl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <platform/kn_channel.h>
#include <platform/nk_result.h>

#include "ipc/message_codec.h"

namespace hos::platform::fuzz {

void Fail(const char* what) {
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

std::vector<UniqueFd> OpenDescriptors(uint32_t count) {
    std::vector<UniqueFd> fds;
    for (uint32_t i = 0; i < count; ++i) {
        fds.emplace_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    }
    return fds;
}

uint32_t DescribedHandles(std::span<const uint8_t> packet) {
    if (packet.size() < NK_MESSAGE_HEADER_SIZE) {
        return 0;
    }
    const FrameHeader header = DecodeHeader(packet.data());
    const uint64_t handles = header.HandleCount();
    if (handles > kMaxHandles || NK_MESSAGE_HEADER_SIZE + handles * NK_HANDLE_DESC_SIZE >
                                     std::min<uint64_t>(header.Size(), packet.size())) {
        return 0;
    }
    return CountPassedHandles(packet.data(), static_cast<uint32_t>(handles));
}

int ParseAndCheck(std::span<const uint8_t> packet, uint32_t fdCount, ParsedFrame& frame) {
    std::string reason;
    const int rc = ParseFrame(packet, fdCount, frame, reason);
    if (rc != NK_EOK) {
        if ((rc != NK_EBADMSG && rc != NK_ETOOBIG) || reason.empty()) {
            Fail("a refused frame has an unexpected code or no reason");
        }
        return rc;
    }
    const auto& header = frame.header;
    if (frame.message.data() != packet.data() || frame.message.size() != header.Size() ||
        frame.arena.data() != packet.data() + frame.message.size() ||
        frame.message.size() + frame.arena.size() != packet.size() ||
        frame.arena.size() != header.arenaSize) {
        Fail("the parsed spans do not cover the packet as its header says");
    }
    if (NK_MESSAGE_HEADER_SIZE + uint64_t{header.HandleCount()} * NK_HANDLE_DESC_SIZE >
            frame.message.size() ||
        header.HandleCount() > kMaxHandles || frame.passedHandles != fdCount ||
        packet.size() > kMaxFrameSize) {
        Fail("an accepted frame breaks a limit");
    }
    ParsedFrame other;
    if (ParseFrame(packet, fdCount + 1, other, reason) != NK_EBADMSG) {
        Fail("a frame with one descriptor too many is accepted");
    }
    return rc;
}

void DeliverAndCheck(const ParsedFrame& frame, uint32_t roomSize, uint32_t roomHandles, size_t roomArena) {
    constexpr uint8_t kUntouched = 0xA5;
    const uint32_t bufferSize = std::max<uint32_t>(roomSize, NK_MESSAGE_HEADER_SIZE);
    std::vector<uint8_t> message(bufferSize, kUntouched);
    std::vector<uint8_t> arenaBytes(roomArena, kUntouched);
    auto* room = reinterpret_cast<nk_message*>(message.data());
    room->sizeFlags = nk_size_word(roomSize, roomHandles);
    nk_arena arena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + arenaBytes.size()};
    if (roomArena == 0) {
        arena = nk_arena{nullptr, nullptr, nullptr};
    }
    const std::vector<uint8_t> before = message;
    std::vector<UniqueFd> fds = OpenDescriptors(frame.passedHandles);
    std::string reason;
    const int rc = DeliverFrame(frame, fds, room, &arena, reason);
    if (!fds.empty()) {
        Fail("DeliverFrame left descriptors behind");
    }
    if (rc != NK_EOK) {
        if (rc != NK_ETOOBIG || message != before || arena.cursor != arena.start) {
            Fail("a refused delivery touched the caller's buffers");
        }
        return;
    }
    if (frame.message.size() > bufferSize || frame.arena.size() > roomArena ||
        frame.header.HandleCount() > roomHandles) {
        Fail("a frame larger than the room was delivered");
    }
    if (nk_arena_used(&arena) != frame.arena.size() ||
        (!frame.arena.empty() &&
         std::memcmp(arenaBytes.data(), frame.arena.data(), frame.arena.size()) != 0)) {
        Fail("the delivered arena differs from the frame's");
    }
    for (uint32_t i = 0; i < frame.header.HandleCount(); ++i) {
        const size_t at = NK_MESSAGE_HEADER_SIZE + size_t{i} * NK_HANDLE_DESC_SIZE;
        uint32_t sent = 0;
        uint32_t got = 0;
        std::memcpy(&sent, frame.message.data() + at, sizeof(sent));
        std::memcpy(&got, message.data() + at, sizeof(got));
        if ((sent & ~NK_HANDLE_DESC_HANDLE_MASK) != (got & ~NK_HANDLE_DESC_HANDLE_MASK) ||
            std::memcmp(frame.message.data() + at + 4, message.data() + at + 4, NK_HANDLE_DESC_SIZE - 4) !=
                0) {
            Fail("a handle descriptor changed beyond its low 24 bits");
        }
        if ((sent & NK_HANDLE_DESC_HANDLE_MASK) == NK_HANDLE_DESC_INVALID) {
            if (got != sent) {
                Fail("an empty handle descriptor was filled in");
            }
        } else if (KnHandleClose(got & NK_HANDLE_DESC_HANDLE_MASK) != NK_EOK) {
            Fail("a delivered handle is not a local handle");
        }
    }
    const size_t fieldsAt = NK_MESSAGE_HEADER_SIZE + size_t{frame.header.HandleCount()} * NK_HANDLE_DESC_SIZE;
    if (std::memcmp(message.data(), frame.message.data(), NK_MESSAGE_HEADER_SIZE) != 0 ||
        std::memcmp(message.data() + fieldsAt, frame.message.data() + fieldsAt,
                    frame.message.size() - fieldsAt) != 0) {
        Fail("the delivered message differs from the frame's");
    }
}

}  // namespace hos::platform::fuzz
