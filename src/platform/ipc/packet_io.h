// Reading and writing single SOCK_SEQPACKET packets with passed file descriptors, on non-blocking
// sockets. Free functions; any thread (one reader per socket at a time).
#pragma once

#include <sys/uio.h>

#include <cstdint>
#include <span>
#include <vector>

#include "core/deadline.h"
#include "core/unique_fd.h"

namespace hos::platform {

enum class ReadStatus {
    Packet,      // a whole packet is in the buffer
    WouldBlock,  // nothing to read now
    Closed,      // the peer has gone
    Oversized,   // the packet was larger than the frame limit; it has been discarded
    TooManyFds,  // the packet passed more descriptors than a frame may hold
    Failed,
};

struct ReadResult {
    ReadStatus status = ReadStatus::Failed;
    size_t length = 0;
};

// Reads one packet into `buffer` (resized as needed) and its descriptors into `fds`. With `block`,
// a blocking socket waits for the packet (a non-blocking one still answers WouldBlock).
ReadResult ReadPacket(int fd, std::vector<uint8_t>& buffer, std::vector<UniqueFd>& fds, bool block = false);

// Sends one packet made of `parts` with `fds`, waiting for room until `deadline`.
// Returns 0, NK_ECLOSED, NK_TRANSPORT_TIMEOUT, NK_ETOOBIG or NK_EFAIL.
int SendPacket(int fd, std::span<const iovec> parts, std::span<const int> fds, const Deadline& deadline);

// Waits until `fd` is readable or hung up. Returns 1, 0 when the deadline passed, or -1.
int WaitReadable(int fd, const Deadline& deadline);

// Makes a non-blocking, close-on-exec SOCK_SEQPACKET socket ready to pass large frames.
UniqueFd MakeSeqPacketSocket();
// Sets the send buffer so that a frame of the largest size fits.
void TuneSocketBuffers(int fd);

}  // namespace hos::platform
