// Fuzz harness: one packet as a client receives it in answer to a call or a handshake. The packet
// is parsed with as many descriptors as it describes, and the frame is delivered into the room of a
// generated proxy (32 bytes, no handles, no arena) and into a larger one (1024 bytes, 4 handles,
// 4096 arena bytes). Seeds: tests/fuzz/corpus/client_frame.
#include <cstddef>
#include <cstdint>

#include <platform/nk_result.h>

#include "fuzz/frame_fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hos::platform;
    const std::span<const uint8_t> packet(data, size);
    ParsedFrame frame;
    if (fuzz::ParseAndCheck(packet, fuzz::DescribedHandles(packet), frame) != NK_EOK) {
        return 0;
    }
    fuzz::DeliverAndCheck(frame, 32, 0, 0);
    fuzz::DeliverAndCheck(frame, 1024, 4, 4096);
    return 0;
}
