// What the frame harnesses share: turning a parsed frame's passed descriptors into real file
// descriptors, and checking what DeliverFrame left in the caller's buffers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <platform/nk_message.h>

#include "core/unique_fd.h"
#include "ipc/frame.h"

namespace hos::platform::fuzz {

// Stops the run with a message on stderr: the fuzzer records the input.
[[noreturn]] void Fail(const char* what);

// `count` descriptors of /dev/null, as a receiver would get them beside a packet.
std::vector<UniqueFd> OpenDescriptors(uint32_t count);

// Parses `packet` as the receiver would with `fdCount` passed descriptors, and checks the parse's
// promises: on success the spans cover the packet exactly, the size word and the arena size add up,
// the descriptors fit the message, and a parse with one descriptor more fails.
// Returns the result of ParseFrame.
int ParseAndCheck(std::span<const uint8_t> packet, uint32_t fdCount, ParsedFrame& frame);

// The descriptors that `packet` says are passed, when its header and descriptors can be read; else 0.
uint32_t DescribedHandles(std::span<const uint8_t> packet);

// Delivers `frame` into a room of `roomSize` message bytes, `roomHandles` descriptors and
// `roomArena` arena bytes, with real descriptors, and checks the result: a copy of the frame where it
// fits, with local handles in the descriptors (closed again here), nothing touched where it does not.
void DeliverAndCheck(const ParsedFrame& frame, uint32_t roomSize, uint32_t roomHandles, size_t roomArena);

}  // namespace hos::platform::fuzz
