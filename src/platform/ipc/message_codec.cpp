#include "ipc/message_codec.h"

#include <algorithm>
#include <cstring>

#include <fmt/format.h>

#include <platform/nk_result.h>

#include "core/handle_table.h"

namespace hos::platform {
namespace {

uint32_t ReadDescriptorWord(const uint8_t* message, uint32_t index) {
    uint32_t word = 0;
    std::memcpy(&word, message + NK_MESSAGE_HEADER_SIZE + index * NK_HANDLE_DESC_SIZE, sizeof(word));
    return word;
}

void WriteDescriptorWord(uint8_t* message, uint32_t index, uint32_t word) {
    std::memcpy(message + NK_MESSAGE_HEADER_SIZE + index * NK_HANDLE_DESC_SIZE, &word, sizeof(word));
}

}  // namespace

int PrepareOutgoing(const nk_message* message, const nk_arena* arena, const FrameHeader& frame,
                    OutgoingPacket& out, std::string& reason) {
    if (message == nullptr) {
        reason = "null message";
        return NK_EINVAL;
    }
    const uint32_t size = nk_message_size(message);
    const uint32_t handles = nk_message_handle_count(message);
    if (size < NK_MESSAGE_HEADER_SIZE) {
        reason = fmt::format("size word gives {} bytes, less than the header", size);
        return NK_EINVAL;
    }
    if (NK_MESSAGE_HEADER_SIZE + handles * NK_HANDLE_DESC_SIZE > size) {
        reason = fmt::format("{} handle descriptors do not fit a message of {} bytes", handles, size);
        return NK_EINVAL;
    }
    if (handles > kMaxHandles) {
        reason = fmt::format("{} handle descriptors exceed the limit of {}", handles, kMaxHandles);
        return NK_ETOOBIG;
    }
    size_t arenaUsed = 0;
    if (arena != nullptr && arena->start != nullptr) {
        if (arena->cursor < arena->start || arena->cursor > arena->end) {
            reason = "arena cursor lies outside the arena";
            return NK_EINVAL;
        }
        arenaUsed = static_cast<size_t>(arena->cursor - arena->start);
    }
    if (size + arenaUsed > kMaxFrameSize) {
        reason = fmt::format("message of {} bytes with an arena of {} exceeds the frame limit of {}", size,
                             arenaUsed, kMaxFrameSize);
        return NK_ETOOBIG;
    }
    const auto* bytes = reinterpret_cast<const uint8_t*>(message);
    out.fds.clear();
    out.keepAlive.clear();
    for (uint32_t i = 0; i < handles; ++i) {
        const uint32_t handle = ReadDescriptorWord(bytes, i) & NK_HANDLE_DESC_HANDLE_MASK;
        if (handle == NK_HANDLE_DESC_INVALID) {
            continue;
        }
        auto object = HandleTable::Instance().Find(handle);
        if (!object || object->Fd() < 0) {
            reason = fmt::format("handle descriptor {} holds handle {}, which cannot be passed", i, handle);
            return NK_EBADHANDLE;
        }
        out.fds.push_back(object->Fd());
        out.keepAlive.push_back(std::move(object));
    }
    FrameHeader header = frame;
    header.iid = message->iid;
    header.mid = message->mid;
    header.sizeFlags = message->sizeFlags;
    header.version = kFrameVersion;
    header.arenaSize = static_cast<uint32_t>(arenaUsed);
    EncodeHeader(header, out.header.data());
    out.partCount = 0;
    out.parts[out.partCount++] = iovec{out.header.data(), out.header.size()};
    if (size > NK_MESSAGE_HEADER_SIZE) {
        out.parts[out.partCount++] =
            iovec{const_cast<uint8_t*>(bytes + NK_MESSAGE_HEADER_SIZE), size - NK_MESSAGE_HEADER_SIZE};
    }
    if (arenaUsed > 0) {
        out.parts[out.partCount++] = iovec{arena->start, arenaUsed};
    }
    return NK_EOK;
}

void PrepareBare(const FrameHeader& frame, std::span<const uint8_t> body, std::span<const uint8_t> arena,
                 OutgoingPacket& out) {
    FrameHeader header = frame;
    header.sizeFlags = nk_size_word(static_cast<uint32_t>(NK_MESSAGE_HEADER_SIZE + body.size()), 0) |
                       (frame.sizeFlags & NK_MESSAGE_FAILED_FLAG);
    header.arenaSize = static_cast<uint32_t>(arena.size());
    header.version = kFrameVersion;
    EncodeHeader(header, out.header.data());
    out.fds.clear();
    out.keepAlive.clear();
    out.partCount = 0;
    out.parts[out.partCount++] = iovec{out.header.data(), out.header.size()};
    if (!body.empty()) {
        out.parts[out.partCount++] = iovec{const_cast<uint8_t*>(body.data()), body.size()};
    }
    if (!arena.empty()) {
        out.parts[out.partCount++] = iovec{const_cast<uint8_t*>(arena.data()), arena.size()};
    }
}

int DeliverFrame(const ParsedFrame& frame, std::vector<UniqueFd>& fds, nk_message* message, nk_arena* arena,
                 std::string& reason) {
    const uint32_t roomSize = std::max<uint32_t>(nk_message_size(message), NK_MESSAGE_HEADER_SIZE);
    const uint32_t roomHandles = nk_message_handle_count(message);
    const size_t roomArena = nk_arena_capacity(arena);
    const uint32_t handles = frame.header.HandleCount();
    if (frame.message.size() > roomSize || handles > roomHandles || frame.arena.size() > roomArena) {
        reason = fmt::format(
            "message of {} bytes, {} handles and an arena of {} exceeds the room of {} bytes, {} "
            "handles and {} arena bytes",
            frame.message.size(), handles, frame.arena.size(), roomSize, roomHandles, roomArena);
        fds.clear();
        return NK_ETOOBIG;
    }
    std::vector<unsigned int> adopted;
    for (auto& fd : fds) {
        const unsigned int handle = HandleTable::Instance().Adopt(std::move(fd));
        if (handle == NK_INVALID_HANDLE) {
            for (const unsigned int done : adopted) {
                HandleTable::Instance().Remove(done);
            }
            fds.clear();
            reason = "the handle table is full";
            return NK_ENOMEM;
        }
        adopted.push_back(handle);
    }
    fds.clear();
    auto* bytes = reinterpret_cast<uint8_t*>(message);
    std::memcpy(bytes, frame.message.data(), frame.message.size());
    size_t next = 0;
    for (uint32_t i = 0; i < handles; ++i) {
        const uint32_t word = ReadDescriptorWord(bytes, i);
        if ((word & NK_HANDLE_DESC_HANDLE_MASK) == NK_HANDLE_DESC_INVALID) {
            continue;
        }
        WriteDescriptorWord(
            bytes, i, (word & ~NK_HANDLE_DESC_HANDLE_MASK) | (adopted[next++] & NK_HANDLE_DESC_HANDLE_MASK));
    }
    if (arena != nullptr && arena->start != nullptr) {
        if (!frame.arena.empty()) {
            std::memcpy(arena->start, frame.arena.data(), frame.arena.size());
        }
        arena->cursor = arena->start + frame.arena.size();
    }
    return NK_EOK;
}

}  // namespace hos::platform
