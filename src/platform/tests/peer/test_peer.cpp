// A server process for the platform's integration tests: `hl_platform_test_peer serve NAME`
// registers NAME, prints "ready" and serves the methods of test_peer_protocol.h until killed or
// asked to quit.
#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

#include <platform/platform.h>

#include "peer/test_peer_protocol.h"

namespace {

using namespace hos::platform::test_peer;

unsigned int g_keptEnd = NK_INVALID_HANDLE;

uint32_t FieldAt24(const std::vector<unsigned char>& message) {
    uint32_t value = 0;
    std::memcpy(&value, message.data() + NK_MESSAGE_HEADER_SIZE, sizeof(value));
    return value;
}

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

// Fills `response` for `request`; returns false when the peer is to stop after replying.
bool Serve(std::vector<unsigned char>& request, std::vector<unsigned char>& response, nk_arena& requestArena,
           nk_arena& responseArena) {
    auto* in = reinterpret_cast<nk_message*>(request.data());
    auto* out = reinterpret_cast<nk_message*>(response.data());
    const uint32_t size = nk_message_size(in);
    std::memcpy(response.data(), request.data(), size);
    const size_t arenaUsed = nk_arena_used(&requestArena);
    std::memcpy(responseArena.start, requestArena.start, arenaUsed);
    responseArena.cursor = responseArena.start + arenaUsed;
    switch (in->mid) {
        case kEcho:
            return true;
        case kWrongMid:
            out->mid = static_cast<uint16_t>(in->mid + 1);
            return true;
        case kWrongIid:
            out->iid = static_cast<uint16_t>(in->iid + 1);
            return true;
        case kSlowEcho:
            std::this_thread::sleep_for(std::chrono::milliseconds(FieldAt24(request)));
            return true;
        case kHang:
            std::puts("hanging");
            std::fflush(stdout);
            for (;;) {
                KnSleep(1000);
            }
        case kGiveHandle: {
            unsigned int given = NK_INVALID_HANDLE;
            KnHandleCreatePair(&g_keptEnd, &given);
            out->sizeFlags = nk_size_word(40, 1);
            nk_handle_desc* desc = nk_message_handle_desc(out, 0);
            std::memset(desc, 0, sizeof(*desc));
            nk_handle_desc_set(desc, given);
            responseArena.cursor = responseArena.start;
            return true;
        }
        case kRaise: {
            const int rc = KnNoticeSetObjectEvent(g_keptEnd, FieldAt24(request));
            std::memcpy(response.data() + NK_MESSAGE_HEADER_SIZE, &rc, sizeof(rc));
            return true;
        }
        case kCloseKept:
            KnHandleClose(g_keptEnd);
            g_keptEnd = NK_INVALID_HANDLE;
            return true;
        case kUseHandle: {
            const unsigned int passed = nk_handle_desc_get(nk_message_handle_desc(in, 0));
            const int rc = KnNoticeSetObjectEvent(passed, 0x10000);
            KnHandleClose(passed);
            out->sizeFlags = nk_size_word(32, 0);
            std::memcpy(response.data() + NK_MESSAGE_HEADER_SIZE, &rc, sizeof(rc));
            return true;
        }
        case kFail:
            out->sizeFlags = NK_SERVER_FAILURE_WORD;
            return true;
        case kQuit:
            return false;
        default:
            return true;
    }
}

int RunServer(const char* name) {
    if (SetTree() != 0 || HosTaskConnectToService(HosTaskGetSelf(), HosTaskGetSelf(), name) != 0) {
        std::fprintf(stderr, "peer: cannot set up the task\n");
        return 2;
    }
    unsigned int id = 0;
    const unsigned int handle = ServiceLocatorRegister(name, 0, 0, &id);
    if (handle == NK_INVALID_HANDLE) {
        std::fprintf(stderr, "peer: cannot register %s\n", name);
        return 3;
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
        const int rc = transport.ops->receive(&transport, in, &requestArena);
        if (rc != 0) {
            continue;
        }
        const bool goOn = Serve(request, response, requestArena, responseArena);
        transport.ops->reply(&transport, reinterpret_cast<nk_message*>(response.data()), &responseArena);
        if (!goOn) {
            KnHandleClose(handle);
            return 0;
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
