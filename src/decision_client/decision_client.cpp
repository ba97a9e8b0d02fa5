#include <access_arbiter/decision_client.h>

#include <diagnostics/hos_logger.h>
#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>
#include <platform/platform.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>

namespace {

using hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;
using Clock = std::chrono::steady_clock;

constexpr const char* kType = "hl.access_arbiter.AccessArbiter.accessArbiter";

// The runtime's connection-failure lines: the library reports a failure in its status and its
// error text, and while it waits for the service each refused connect would repeat it.
class QuietLogger final : public hosipc::api_v1::ILogger {
public:
    void Print(Verbosity, hosipc::api_v1::ILogMessage&) override {}
};

void SilenceThePlatform() {
    static std::once_flag once;
    std::call_once(once, [] { hos::logger::HOSLogger::Setup("HLDECIDE", hos::logger::LogLevel::Off, nullptr); });
}

std::string Hex(int code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(code));
    return text;
}

}  // namespace

struct hl_decision_client {
    hosipc::api_v1::Application application{std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0,
        hosipc::api_v1::ApplicationSettings{nullptr, nullptr, std::make_shared<QuietLogger>(), nullptr})};
    std::unique_ptr<AccessArbiter, hosipc_detail::api_v1::IpcDeleter> proxy;
    std::string error;

    int Fail(int status, std::string text) {
        error = std::move(text);
        return status;
    }
};

extern "C" {

hl_decision_client* hl_decision_client_new(void) {
    SilenceThePlatform();
    try {
        return new hl_decision_client;
    } catch (const std::exception&) {
        return nullptr;
    }
}

void hl_decision_client_free(hl_decision_client* client) { delete client; }

int hl_decision_connect(hl_decision_client* client, unsigned int wait_for_service_ms) {
    if (client == nullptr) {
        return HL_DECISION_FAILURE;
    }
    client->proxy.reset();
    client->error.clear();
    const auto deadline = Clock::now() + std::chrono::milliseconds(wait_for_service_ms);
    for (;;) {
        int status = HL_DECISION_NOT_PUBLISHED;
        const auto target = shared::ipc_utils::FindConnectionTargetForType(kType, 0xffffffffU);
        if (!target) {
            client->error.clear();
        } else {
            const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
                target.server, target.service, 5000, false);
            try {
                client->proxy = hosipc_detail::idl_traits::MakeProxyImpl(
                    connector, client->application.GetResourceProvider(),
                    static_cast<hosipc_detail::idl_traits::ProxyBait<AccessArbiter>*>(nullptr));
                return HL_DECISION_OK;
            } catch (const std::exception& error) {
                status = client->Fail(HL_DECISION_UNREACHABLE, std::string("server ") + target.server + ": " + error.what());
            }
        }
        if (Clock::now() >= deadline) {
            return status;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

int hl_decision_ask(hl_decision_client* client, unsigned int timeout_ms, int* approved) {
    if (client == nullptr || approved == nullptr) {
        return HL_DECISION_FAILURE;
    }
    client->error.clear();
    if (!client->proxy) {
        return client->Fail(HL_DECISION_FAILURE, "not connected");
    }
    if (timeout_ms != 0) {
        static_cast<hosipc_detail::idl_traits::Proxy<AccessArbiter>*>(client->proxy.get())
            ->SetTimeouts(NK_TIMEOUT_INFINITE, timeout_ms);
    }
    unsigned char decision = 0xff;
    try {
        client->proxy->GetUserDecision(decision);
    } catch (const hosipc_detail::idl_traits::TransportError& error) {
        if (error.Result() == NK_TRANSPORT_TIMEOUT) {
            return client->Fail(HL_DECISION_TIMED_OUT, "no decision within " + std::to_string(timeout_ms) + " ms");
        }
        if (error.Result() == NK_ECLOSED) {
            return client->Fail(HL_DECISION_PEER_GONE, error.what());
        }
        return client->Fail(HL_DECISION_FAILURE, std::string(error.what()) + " " + Hex(error.Result()));
    } catch (const std::exception& error) {
        const std::string text = error.what();
        return client->Fail(text.find("server error") != std::string::npos ? HL_DECISION_SERVER_FAILURE
                                                                            : HL_DECISION_FAILURE,
                            text);
    }
    if (decision > 1) {
        return client->Fail(HL_DECISION_FAILURE, "unexpected answer " + std::to_string(decision));
    }
    *approved = decision;
    return HL_DECISION_OK;
}

const char* hl_decision_error(const hl_decision_client* client) {
    return client != nullptr ? client->error.c_str() : "";
}

const char* hl_decision_status_text(int status) {
    switch (status) {
        case HL_DECISION_OK:
            return "ok";
        case HL_DECISION_NOT_PUBLISHED:
            return "service not found";
        case HL_DECISION_UNREACHABLE:
            return "service not reachable";
        case HL_DECISION_TIMED_OUT:
            return "timed out";
        case HL_DECISION_PEER_GONE:
            return "peer gone";
        case HL_DECISION_SERVER_FAILURE:
            return "server failure";
        default:
            return "request failed";
    }
}

}  // extern "C"
