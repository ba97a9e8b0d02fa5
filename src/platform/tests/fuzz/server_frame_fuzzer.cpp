// Fuzz harness: one packet as a server channel receives it from a client. The packet is parsed with
// as many descriptors as it describes; a Resolve is answered from a component tree; a Request is
// delivered into the rooms of the platform's test peer and of the watchdog server. Seeds:
// tests/corpus (malformed frames) and tests/fuzz/corpus/server_frame.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <platform/hos_task.h>
#include <platform/nk_result.h>

#include "fuzz/frame_fuzz_support.h"
#include "task/task.h"

namespace {

using namespace hos::platform;

void SetTreeOnce() {
    static const bool done = [] {
        static const HosEndpointDesc endpoints[] = {
            {0, "waylandClient", "waylandClient", "hl.WaylandClient"},
            {1, "echo.echo", "echo", "hl.test.Echo"},
        };
        const HosComponentTree tree{"hl.test.EchoPeer", endpoints, 2, nullptr, 0};
        return HosTaskSetComponentTree(HosTaskGetSelf(), &tree) == 0;
    }();
    if (!done) {
        fuzz::Fail("cannot set the component tree");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SetTreeOnce();
    const std::span<const uint8_t> packet(data, size);
    ParsedFrame frame;
    if (fuzz::ParseAndCheck(packet, fuzz::DescribedHandles(packet), frame) != NK_EOK) {
        return 0;
    }
    switch (frame.header.kind) {
        case FrameKind::Resolve: {
            const std::string_view name(reinterpret_cast<const char*>(frame.arena.data()),
                                        frame.arena.size());
            const int riid = Task::Self().Resolve(name);
            if (riid != 0 && riid != 1 && riid != NK_ENOENDPOINT) {
                fuzz::Fail("a name resolved to something outside the tree");
            }
            break;
        }
        case FrameKind::Request:
            fuzz::DeliverAndCheck(frame, 1024, 4, 4096);
            fuzz::DeliverAndCheck(frame, 256, 0, 1024);
            break;
        default:
            break;
    }
    return 0;
}
