// A decision service for hl-ask's tests: serves hl.access_arbiter.AccessArbiter with the generated
// stub and publishes it like the program does.
//
//   hl_ask_test_decision_server MODE     MODE: approve, decline, fail (server error), hang (never
//                                        answers), die (exits on the first request), odd (answers 7)
// Prints "ready" once published. Exit status: 2 usage, 1 set-up failure.
#include <ipc_runtime/idl/hl/access_arbiter/access_arbiter.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/platform.h>
#include <peer/test_server.h>

#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

using hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;

class ScriptedArbiter final : public AccessArbiter {
public:
    explicit ScriptedArbiter(std::string mode) : m_mode(std::move(mode)) {}
    void GetUserDecision(unsigned char& decision) override {
        if (m_mode == "fail") {
            throw std::runtime_error("asked to fail");
        }
        if (m_mode == "hang") {
            for (;;) {
                ::pause();
            }
        }
        if (m_mode == "die") {
            ::_exit(0);
        }
        decision = m_mode == "approve" ? 1 : m_mode == "decline" ? 0 : 7;
    }

private:
    std::string m_mode;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s approve|decline|fail|hang|die|odd\n", argv[0]);
        return 2;
    }
    static const HosEndpointDesc endpoints[] = {{1, "hl.access_arbiter.AccessArbiter.accessArbiter",
                                                 "accessArbiter", "hl.access_arbiter.AccessArbiter"}};
    const HosComponentTree tree{"hl.vdi.AccessArbiter", endpoints, 1, nullptr, 0};
    const unsigned int server =
        hl_test::RegisterServer(tree, "accessArbiter_id", "hl.access_arbiter.AccessArbiter.accessArbiter");
    if (server == NK_INVALID_HANDLE) {
        return 1;
    }
    ScriptedArbiter implementation(argv[1]);
    hosipc_detail::idl_traits::Stub<AccessArbiter> stub(
        &implementation,
        std::make_shared<hosipc_detail::api_v1::ResourceProvider>(hosipc_detail::api_v1::MessageCapacity{}, 0,
                                                                  hosipc::api_v1::ApplicationSettings{}));
    hl_test::ServeForever(server, {hl_test::Serve(1, stub)});
}
