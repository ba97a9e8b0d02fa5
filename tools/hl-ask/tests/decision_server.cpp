// A decision service for hl-ask's tests: serves hl.access_arbiter.AccessArbiter with the generated
// stub and publishes it like the program does.
//
//   hl_ask_test_decision_server MODE     MODE: approve, decline, fail (server error), hang (never
//                                        answers), die (exits on the first request), odd (answers 7)
// Prints "ready" once published. Exit status: 2 usage, 1 set-up failure.
#include <interfaces/hl/access_arbiter/access_arbiter.h>
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
    ScriptedArbiter implementation(argv[1]);
    hosipc::server::ComponentTree tree("hl.vdi.AccessArbiter");
    tree.Serve<AccessArbiter>(1, "hl.access_arbiter.AccessArbiter.accessArbiter", "accessArbiter",
                              "hl.access_arbiter.AccessArbiter", &implementation)
        .PublishType("hl.access_arbiter.AccessArbiter.accessArbiter");
    return hl_test::ServeForever(std::move(tree), "accessArbiter_id");
}
