// A server of hl.app_manager.ApplicationWatchdog in a process of its own, for the cross-process
// tests and the benchmark.
//
//   hl_ipc_runtime_watchdog_server <server name>
//
// Registers <server name> with the endpoint "app_manager.applicationWatchdog" (riid 1), prints
// "ready" on stdout, then serves requests until killed. Ping answers rc = the length of the name,
// and throws for the name "throw", so that the client sees a server failure.
// Exit status: 2 for wrong usage, 1 when the server can't be set up.
#include <ipc_runtime/idl/hl/app_manager/application_watchdog.h>
#include <ipc_runtime/resource_provider.h>

#include <platform/platform.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;

constexpr unsigned int kRiid = 1;
constexpr std::size_t kMessageRoom = 256;
constexpr std::size_t kArenaRoom = 1024;

class CountingWatchdog final : public ApplicationWatchdog {
public:
    void Ping(const std::vector<unsigned char>& appName, int& rc) override {
        if (std::string(appName.begin(), appName.end()) == "throw") {
            throw std::runtime_error("asked to fail");
        }
        rc = static_cast<int>(appName.size());
    }
};

int Serve(const char* serverName) {
    static const HosEndpointDesc endpoints[] = {{kRiid, "app_manager.applicationWatchdog",
                                                 "applicationWatchdog",
                                                 "hl.app_manager.ApplicationWatchdog"}};
    const HosComponentTree tree{"hl.app_manager.TestManager", endpoints, 1, nullptr, 0};
    unsigned int registration = 0;
    const unsigned int server = HosTaskSetComponentTree(HosTaskGetSelf(), &tree) == 0
                                    ? ServiceLocatorRegister(serverName, nullptr, 0, &registration)
                                    : NK_INVALID_HANDLE;
    if (server == NK_INVALID_HANDLE) {
        std::fprintf(stderr, "watchdog server: can't set up %s\n", serverName);
        return 1;
    }
    NkHosTransport transport{};
    NkHosTransport_Init(&transport, server, nullptr, 0);

    CountingWatchdog implementation;
    hosipc_detail::idl_traits::Stub<ApplicationWatchdog> stub(
        &implementation,
        std::make_shared<hosipc_detail::api_v1::ResourceProvider>(hosipc_detail::api_v1::MessageCapacity{}, 0,
                                                                  hosipc::api_v1::ApplicationSettings{}));

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
        // What a request of an unknown method gets back: a bare header.
        responseBytes.fill(0);
        response->iid = request->iid;
        response->mid = request->mid;
        response->sizeFlags = nk_size_word(NK_MESSAGE_HEADER_SIZE, 0);
        nk_arena responseArena{nullptr, nullptr, nullptr};
        stub.DispatchRequest(kRiid, request, &requestArena, response, &responseArena);
        transport.ops->reply(&transport, response, &responseArena);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <server name>\n", argv[0]);
        return 2;
    }
    return Serve(argv[1]);
}
