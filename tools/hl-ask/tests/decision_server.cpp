// A decision service for hl-ask's tests: serves hl.access_arbiter.AccessArbiter with the generated
// stub and publishes it like the program does.
//
//   hl_ask_test_decision_server MODE     MODE: approve, decline, fail (server error), hang (never
//                                        answers), die (exits on the first request), odd (answers 7)
// Prints "ready" once published. Exit status: 2 usage, 1 set-up failure.
#include <ipc_runtime/idl/hl/access_arbiter/access_arbiter.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/ipc_dispatcher/publish_services.h>
#include <platform/platform.h>

#include <unistd.h>

#include <array>
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
    unsigned int registration = 0;
    const unsigned int server = HosTaskSetComponentTree(HosTaskGetSelf(), &tree) == 0
                                    ? ServiceLocatorRegister("accessArbiter_id", nullptr, 0, &registration)
                                    : NK_INVALID_HANDLE;
    if (server == NK_INVALID_HANDLE ||
        shared::ipc_dispatcher::PublishServices(
            {{"hl.access_arbiter.AccessArbiter.accessArbiter", "accessArbiter_id"}}) != 0) {
        std::fprintf(stderr, "decision server: can't set up\n");
        return 1;
    }
    NkHosTransport transport{};
    NkHosTransport_Init(&transport, server, nullptr, 0);
    ScriptedArbiter implementation(argv[1]);
    hosipc_detail::idl_traits::Stub<AccessArbiter> stub(
        &implementation,
        std::make_shared<hosipc_detail::api_v1::ResourceProvider>(hosipc_detail::api_v1::MessageCapacity{}, 0,
                                                                  hosipc::api_v1::ApplicationSettings{}));
    std::puts("ready");
    std::fflush(stdout);
    alignas(8) std::array<unsigned char, 256> requestBytes{};
    alignas(8) std::array<unsigned char, 256> responseBytes{};
    std::array<unsigned char, 1024> arenaBytes{};
    auto* request = reinterpret_cast<nk_message*>(requestBytes.data());
    auto* response = reinterpret_cast<nk_message*>(responseBytes.data());
    for (;;) {
        request->sizeFlags = nk_size_word(256, 0);
        nk_arena requestArena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + arenaBytes.size()};
        if (transport.ops->receive(&transport, request, &requestArena) != 0) {
            continue;
        }
        responseBytes.fill(0);
        response->iid = request->iid;
        response->mid = request->mid;
        response->sizeFlags = nk_size_word(NK_MESSAGE_HEADER_SIZE, 0);
        nk_arena responseArena{nullptr, nullptr, nullptr};
        stub.DispatchRequest(1, request, &requestArena, response, &responseArena);
        transport.ops->reply(&transport, response, &responseArena);
    }
}
