// A server process that comes up the way a component does: `hl_platform_publishing_peer NAME TYPE`
// declares the echo endpoints, registers NAME, hands the channel to a connection manager, publishes
// TYPE with PublishServices, prints "ready" and echoes every request until killed.
#include <cstdio>
#include <cstring>
#include <vector>

#include <platform/ipc_dispatcher/create_ipc_connection_manager.h>
#include <platform/ipc_dispatcher/publish_services.h>
#include <platform/platform.h>

#include "peer/test_peer_protocol.h"

namespace {

using namespace hos::platform::test_peer;

bool SetUpTask(const char* name) {
    static const HosEndpointDesc endpoints[] = {
        {kEchoRiid, kEchoEndpointFull, kEchoEndpointShort, kEchoInterfaceType}};
    static const unsigned int serviceEndpoints[] = {kEchoRiid};
    static const HosServiceComponentDesc services[] = {
        {"echo", "echo", kEchoInterfaceType, serviceEndpoints, 1}};
    const HosComponentTree tree{"hl.test.PublishingPeer", endpoints, 1, services, 1};
    return HosTaskSetComponentTree(HosTaskGetSelf(), &tree) == 0 &&
           HosTaskConnectToService(HosTaskGetSelf(), HosTaskGetSelf(), name) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: hl_platform_publishing_peer NAME TYPE\n");
        return 1;
    }
    unsigned int id = 0;
    const unsigned int handle =
        SetUpTask(argv[1]) ? ServiceLocatorRegister(argv[1], 0, 0, &id) : NK_INVALID_HANDLE;
    if (handle == NK_INVALID_HANDLE) {
        std::fprintf(stderr, "publishing peer: cannot set up or register %s\n", argv[1]);
        return 2;
    }
    hos::ipc::ConnectionManager::Config config;
    config.handles[kEchoRiid] = handle;
    const auto manager = shared::ipc_dispatcher::CreateIpcConnectionManager(config);
    if (shared::ipc_dispatcher::PublishServices({{argv[2], argv[1]}}) != 0) {
        return 3;
    }
    ServiceLocatorUnregister(id);
    NkHosTransport transport;
    NkHosTransport_Init(&transport, handle, 0, 0);
    std::vector<unsigned char> message(kRequestRoom), bytes(kArenaRoom);
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        auto* request = reinterpret_cast<nk_message*>(message.data());
        request->sizeFlags = nk_size_word(kRequestRoom, 0);
        nk_arena arena{bytes.data(), bytes.data(), bytes.data() + kArenaRoom};
        if (transport.ops->receive(&transport, request, &arena) == 0) {
            transport.ops->reply(&transport, request, &arena);
        }
    }
}
