// Between a caller's nk_message and arena and the wire frame: building an outgoing packet (with the
// descriptors of the handles it carries) and delivering a checked incoming frame into the caller's
// buffers (adopting the passed descriptors as local handles). Free functions; any thread.
#pragma once

#include <sys/uio.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include <platform/nk_message.h>

#include "core/handle_object.h"
#include "core/unique_fd.h"
#include "ipc/frame.h"

namespace hos::platform {

struct OutgoingPacket {
    std::array<uint8_t, NK_MESSAGE_HEADER_SIZE> header{};
    std::array<iovec, 3> parts{};
    size_t partCount = 0;
    std::vector<int> fds;
    std::vector<std::shared_ptr<HandleObject>> keepAlive;  // owners of `fds` while sending
};

// Prepares `message` (with `arena`, which may be null) for sending with the platform fields of
// `frame` (kind, sequence, result). Returns 0, or NK_EINVAL / NK_ETOOBIG / NK_EBADHANDLE with
// `reason` set. The packet refers to the caller's memory, which must stay until it is sent.
int PrepareOutgoing(const nk_message* message, const nk_arena* arena, const FrameHeader& frame,
                    OutgoingPacket& out, std::string& reason);

// Prepares a frame of a bare header with no handles and an optional arena.
void PrepareBare(const FrameHeader& frame, std::span<const uint8_t> body, std::span<const uint8_t> arena,
                 OutgoingPacket& out);

// Copies `frame` into `message` and `arena` when it fits their room (size word of `message` on
// entry, at least 24 bytes; its handle count; the arena from start to end). Each passed descriptor
// in `fds` becomes a local handle written into its handle descriptor. Returns 0, or NK_ETOOBIG /
// NK_ENOMEM with `reason` set; on failure `message` and `arena` are untouched and `fds` closed.
int DeliverFrame(const ParsedFrame& frame, std::vector<UniqueFd>& fds, nk_message* message, nk_arena* arena,
                 std::string& reason);

}  // namespace hos::platform
