#include "test_server.h"

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace hl_test {

int ServeForever(hosipc::server::ComponentTree tree, const char* serverName) {
    std::unique_ptr<hosipc::server::ServingHost> host;
    try {
        host = std::make_unique<hosipc::server::ServingHost>(std::move(tree), serverName);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "test server: can't set up %s: %s\n", serverName, error.what());
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    for (;;) {
        host->ServeOne(NK_TIMEOUT_INFINITE);
    }
}

}  // namespace hl_test
