// hl-ask: asks the decision service for a person's decision and prints it.
#include <diagnostics/hos_logger.h>
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>
#include <platform/platform.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "core/ask_options.h"

namespace {

using hl_ask::Outcome;
using hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;

constexpr const char* kType = "hl.access_arbiter.AccessArbiter.accessArbiter";
constexpr const char* kHelp =
    "Usage: hl-ask [--timeout MS] [--wait-for-service MS]\n"
    "\n"
    "Finds the decision service through the registry (type hl.access_arbiter.AccessArbiter.accessArbiter),\n"
    "calls GetUserDecision and prints 'approved' or 'declined'. The service answers only once a person\n"
    "has decided, so without --timeout this waits as long as the person takes.\n"
    "\n"
    "  --timeout MS            give up after MS milliseconds of waiting for the answer\n"
    "  --wait-for-service MS   wait up to MS milliseconds for the service to be published and answer\n"
    "\n"
    "Exit codes: 0 approved; 1 declined; 2 any error, with a message on standard error: service not\n"
    "found, server failure, peer gone, timed out, usage error.\n";

using Clock = std::chrono::steady_clock;

// The runtime's connection-failure lines: hl-ask reports the failure in its own words, and while it
// waits for the service each refused connect would repeat it.
class QuietLogger final : public hosipc::api_v1::ILogger {
public:
    void Print(Verbosity, hosipc::api_v1::ILogMessage&) override {}
};

struct Connected {
    std::unique_ptr<AccessArbiter, hosipc_detail::api_v1::IpcDeleter> proxy;
    Outcome failure = Outcome::NotPublished;
    std::string detail;
};

Connected ConnectToService(const hosipc::api_v1::Application& application, std::uint32_t waitMs) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(waitMs);
    Connected result;
    for (;;) {
        const auto target = shared::ipc_utils::FindConnectionTargetForType(kType, 0xffffffffU);
        if (!target) {
            result.failure = Outcome::NotPublished;
            result.detail.clear();
        } else {
            const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
                target.server, target.service, 5000, false);
            try {
                result.proxy = hosipc_detail::idl_traits::MakeProxyImpl(
                    connector, application.GetResourceProvider(),
                    static_cast<hosipc_detail::idl_traits::ProxyBait<AccessArbiter>*>(nullptr));
                return result;
            } catch (const std::exception& error) {
                result.failure = Outcome::NotReachable;
                result.detail = std::string("server ") + target.server + ": " + error.what();
            }
        }
        if (Clock::now() >= deadline) {
            return result;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

int Finish(const hl_ask::Report& report) {
    if (report.exitCode <= 1) {
        std::printf("%s\n", report.text.c_str());
    } else {
        std::fprintf(stderr, "hl-ask: %s\n", report.text.c_str());
    }
    return report.exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    const auto parsed = hl_ask::ParseOptions(std::vector<std::string>(argv + 1, argv + argc));
    if (!parsed.ok) {
        std::fprintf(stderr, "hl-ask: %s\n\n%s", parsed.error.c_str(), kHelp);
        return 2;
    }
    if (parsed.options.help) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    // hl-ask says what went wrong in its own words; the platform's log lines (each refused connect
    // while it waits for the service) would only repeat it.
    hos::logger::HOSLogger::Setup("HLASK", hos::logger::LogLevel::Off, nullptr);
    hosipc::api_v1::Application application{std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0,
        hosipc::api_v1::ApplicationSettings{nullptr, nullptr, std::make_shared<QuietLogger>(), nullptr})};
    Connected connected = ConnectToService(application, parsed.options.waitForServiceMs.value_or(0));
    if (!connected.proxy) {
        return Finish(hl_ask::Describe(connected.failure, connected.detail));
    }
    if (parsed.options.timeoutMs) {
        static_cast<hosipc_detail::idl_traits::Proxy<AccessArbiter>*>(connected.proxy.get())
            ->SetTimeouts(NK_TIMEOUT_INFINITE, *parsed.options.timeoutMs);
    }
    unsigned char decision = 0xff;
    try {
        connected.proxy->GetUserDecision(decision);
    } catch (const hosipc_detail::idl_traits::TransportError& error) {
        if (error.Result() == NK_TRANSPORT_TIMEOUT) {
            return Finish(hl_ask::Describe(Outcome::TimedOut, std::to_string(*parsed.options.timeoutMs)));
        }
        if (error.Result() == NK_ECLOSED) {
            return Finish(hl_ask::Describe(Outcome::PeerGone, ""));
        }
        char code[16];
        std::snprintf(code, sizeof code, "0x%08x", static_cast<unsigned>(error.Result()));
        return Finish(hl_ask::Describe(Outcome::OtherFailure, std::string(error.what()) + " " + code));
    } catch (const std::exception& error) {
        const std::string text = error.what();
        if (text.find("server error") != std::string::npos) {
            return Finish(hl_ask::Describe(Outcome::ServerFailure, text));
        }
        return Finish(hl_ask::Describe(Outcome::OtherFailure, text));
    }
    if (decision == 1) {
        return Finish(hl_ask::Describe(Outcome::Approved, ""));
    }
    if (decision == 0) {
        return Finish(hl_ask::Describe(Outcome::Declined, ""));
    }
    return Finish(hl_ask::Describe(Outcome::OtherFailure, "unexpected answer " + std::to_string(decision)));
}
