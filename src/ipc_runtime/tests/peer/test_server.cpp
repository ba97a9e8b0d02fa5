#include "test_server.h"

#include <platform/ipc_dispatcher/publish_services.h>

#include <array>
#include <cstdio>
#include <vector>

namespace hl_test {

namespace {

constexpr std::size_t kMessageRoom = 512;
constexpr std::size_t kArenaRoom = 2048;

}  // namespace

unsigned int RegisterServer(const HosComponentTree& tree, const char* serverName, const char* publishedType) {
    unsigned int registration = 0;
    const unsigned int server = HosTaskSetComponentTree(HosTaskGetSelf(), &tree) == 0
                                    ? ServiceLocatorRegister(serverName, nullptr, 0, &registration)
                                    : NK_INVALID_HANDLE;
    if (server == NK_INVALID_HANDLE ||
        (publishedType != nullptr &&
         shared::ipc_dispatcher::PublishServices({{publishedType, serverName}}) != 0)) {
        std::fprintf(stderr, "test server: can't set up %s\n", serverName);
        return NK_INVALID_HANDLE;
    }
    return server;
}

void ServeForever(unsigned int channel, std::initializer_list<ServedInterface> interfaces) {
    const std::vector<ServedInterface> served(interfaces);
    NkHosTransport transport{};
    NkHosTransport_Init(&transport, channel, nullptr, 0);
    std::puts("ready");
    std::fflush(stdout);

    alignas(8) std::array<unsigned char, kMessageRoom> requestBytes{};
    alignas(8) std::array<unsigned char, kMessageRoom> responseBytes{};
    std::array<unsigned char, kArenaRoom> arenaBytes{};
    auto* request = reinterpret_cast<nk_message*>(requestBytes.data());
    auto* response = reinterpret_cast<nk_message*>(responseBytes.data());
    for (;;) {
        request->sizeFlags = nk_size_word(kMessageRoom, 0);
        nk_arena requestArena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + arenaBytes.size()};
        if (transport.ops->receive(&transport, request, &requestArena) != 0) {
            continue;
        }
        responseBytes.fill(0);
        response->iid = request->iid;
        response->mid = request->mid;
        response->sizeFlags = nk_size_word(NK_MESSAGE_HEADER_SIZE, 0);
        nk_arena responseArena{nullptr, nullptr, nullptr};
        for (const ServedInterface& interface : served) {
            if (interface.riid == request->iid) {
                interface.dispatch(request, &requestArena, response, &responseArena);
            }
        }
        transport.ops->reply(&transport, response, &responseArena);
    }
}

}  // namespace hl_test
