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

#include "peer/test_server.h"

#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;

constexpr unsigned int kRiid = 1;

class CountingWatchdog final : public ApplicationWatchdog {
public:
    void Ping(const std::vector<unsigned char>& appName, int& rc) override {
        if (std::string(appName.begin(), appName.end()) == "throw") {
            throw std::runtime_error("asked to fail");
        }
        rc = static_cast<int>(appName.size());
    }
};

[[noreturn]] void Serve(unsigned int server) {
    CountingWatchdog implementation;
    hosipc_detail::idl_traits::Stub<ApplicationWatchdog> stub(
        &implementation,
        std::make_shared<hosipc_detail::api_v1::ResourceProvider>(hosipc_detail::api_v1::MessageCapacity{}, 0,
                                                                  hosipc::api_v1::ApplicationSettings{}));
    hl_test::ServeForever(server, {hl_test::Serve(kRiid, stub)});
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <server name>\n", argv[0]);
        return 2;
    }
    static const HosEndpointDesc endpoints[] = {{kRiid, "app_manager.applicationWatchdog",
                                                 "applicationWatchdog",
                                                 "hl.app_manager.ApplicationWatchdog"}};
    const HosComponentTree tree{"hl.app_manager.TestManager", endpoints, 1, nullptr, 0};
    const unsigned int server = hl_test::RegisterServer(tree, argv[1], nullptr);
    if (server == NK_INVALID_HANDLE) {
        return 1;
    }
    Serve(server);
}
