// A server process for the platform's integration tests: `hl_platform_test_peer serve NAME`
// registers NAME, prints "ready" and serves the methods of test_peer_protocol.h until killed.
#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

#include <platform/platform.h>

#include "peer/test_peer_protocol.h"

namespace {

using namespace hos::platform::test_peer;

unsigned int g_keptEnd = NK_INVALID_HANDLE;

int SetTree() {
    static const HosEndpointDesc endpoints[] = {
        {0, "waylandClient", "waylandClient", "hl.WaylandClient"},
        {kEchoRiid, kEchoEndpointFull, kEchoEndpointShort, kEchoInterfaceType},
    };
    static const unsigned int serviceEndpoints[] = {kEchoRiid};
    static const HosServiceComponentDesc services[] = {
        {"echo", "echo", kEchoInterfaceType, serviceEndpoints, 1}};
    const HosComponentTree tree{"hl.test.EchoPeer", endpoints, 2, services, 1};
    return HosTaskSetComponentTree(HosTaskGetSelf(), &tree);
}

// Answers `in` in `out`: an echo of it, message and arena, changed as its method says.
void Serve(nk_message* in, nk_arena& requestArena, unsigned char* out, nk_arena& responseArena) {
    auto* header = reinterpret_cast<nk_message*>(out);
    std::memcpy(out, in, nk_message_size(in));
    const size_t arenaUsed = nk_arena_used(&requestArena);
    std::memcpy(responseArena.start, requestArena.start, arenaUsed);
    responseArena.cursor = responseArena.start + arenaUsed;
    uint32_t field = 0;
    std::memcpy(&field, out + NK_MESSAGE_HEADER_SIZE, sizeof(field));
    int rc = 0;
    switch (in->mid) {
        case kWrongMid:
            header->mid = static_cast<uint16_t>(in->mid + 1);
            break;
        case kWrongIid:
            header->iid = static_cast<uint16_t>(in->iid + 1);
            break;
        case kSlowEcho:
            std::this_thread::sleep_for(std::chrono::milliseconds(field));
            break;
        case kHang:
            std::puts("hanging");
            std::fflush(stdout);
            for (;;) {
                KnSleep(1000);
            }
        case kGiveHandle: {
            unsigned int given = NK_INVALID_HANDLE;
            KnHandleCreatePair(&g_keptEnd, &given);
            header->sizeFlags = nk_size_word(40, 1);
            std::memset(nk_message_handle_desc(header, 0), 0, sizeof(nk_handle_desc));
            nk_handle_desc_set(nk_message_handle_desc(header, 0), given);
            responseArena.cursor = responseArena.start;
            break;
        }
        case kRaise:
            rc = KnNoticeSetObjectEvent(g_keptEnd, field);
            break;
        case kCloseKept:
            KnHandleClose(g_keptEnd);
            break;
        case kUseHandle: {
            const unsigned int passed = nk_handle_desc_get(nk_message_handle_desc(in, 0));
            rc = KnNoticeSetObjectEvent(passed, 0x10000);
            KnHandleClose(passed);
            header->sizeFlags = nk_size_word(32, 0);
            break;
        }
        case kFail:
            header->sizeFlags = NK_SERVER_FAILURE_WORD;
            return;
        default:
            return;
    }
    if (in->mid == kRaise || in->mid == kUseHandle) {
        std::memcpy(out + NK_MESSAGE_HEADER_SIZE, &rc, sizeof(rc));
    }
}

int RunServer(const char* name) {
    unsigned int id = 0;
    const bool taskReady =
        SetTree() == 0 && HosTaskConnectToService(HosTaskGetSelf(), HosTaskGetSelf(), name) == 0;
    const unsigned int handle = taskReady ? ServiceLocatorRegister(name, 0, 0, &id) : NK_INVALID_HANDLE;
    if (handle == NK_INVALID_HANDLE) {
        std::fprintf(stderr, "peer: cannot set up the task or register %s\n", name);
        return 2;
    }
    NkHosTransport transport;
    NkHosTransport_Init(&transport, handle, 0, 0);
    NkHosSetTransportTimeouts(&transport, 200, NK_TIMEOUT_INFINITE);
    std::vector<unsigned char> request(kRequestRoom), response(kRequestRoom);
    std::vector<unsigned char> requestBytes(kArenaRoom), responseBytes(kArenaRoom);
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        auto* in = reinterpret_cast<nk_message*>(request.data());
        in->sizeFlags = nk_size_word(kRequestRoom, kRequestHandleRoom);
        nk_arena requestArena{requestBytes.data(), requestBytes.data(), requestBytes.data() + kArenaRoom};
        nk_arena responseArena{responseBytes.data(), responseBytes.data(), responseBytes.data() + kArenaRoom};
        if (transport.ops->receive(&transport, in, &requestArena) == 0) {
            Serve(in, requestArena, response.data(), responseArena);
            transport.ops->reply(&transport, reinterpret_cast<nk_message*>(response.data()), &responseArena);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "serve") == 0) {
        return RunServer(argv[2]);
    }
    std::fprintf(stderr, "usage: hl_platform_test_peer serve NAME\n");
    return 1;
}
