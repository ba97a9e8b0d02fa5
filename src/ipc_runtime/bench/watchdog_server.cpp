// A server of hl.app_manager.ApplicationWatchdog in a process of its own, for the ping benchmark.
//
//   hl_ipc_runtime_watchdog_server <server name>
//
// Registers <server name> with the endpoint "app_manager.applicationWatchdog" (riid 1), prints
// "ready" on stdout, then serves requests until killed. Ping answers rc = the length of the name,
// and throws for the name "throw", so that the client sees a server failure.
// Exit status: 2 for wrong usage, 1 when the server can't be set up.
#include <interfaces/hl/app_manager/application_watchdog.h>

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

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <server name>\n", argv[0]);
        return 2;
    }
    CountingWatchdog implementation;
    hosipc::server::ComponentTree tree("hl.app_manager.TestManager");
    tree.Serve<ApplicationWatchdog>(kRiid, "app_manager.applicationWatchdog", "applicationWatchdog",
                                    "hl.app_manager.ApplicationWatchdog", &implementation);
    return hl_test::ServeForever(std::move(tree), argv[1]);
}
