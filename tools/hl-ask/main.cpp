// hl-ask: asks the decision service for a person's decision and prints it.
#include <access_arbiter/decision_client.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "core/ask_options.h"

namespace {

using hl_ask::Outcome;

constexpr const char* kHelp =
    "Usage: hl-ask [--timeout MS] [--wait-for-service MS]\n"
    "\n"
    "Finds the decision service through the registry (type hl.access_arbiter.AccessArbiter.accessArbiter),\n"
    "calls GetUserDecision and prints 'approved' or 'declined'. The service answers only once a person\n"
    "has decided, so without --timeout this waits as long as the person takes.\n"
    "\n"
    "  --timeout MS            give up after MS milliseconds of waiting for the answer (0: no limit)\n"
    "  --wait-for-service MS   wait up to MS milliseconds for the service to be published and answer\n"
    "                          (on a terminal, one line says that it waits)\n"
    "\n"
    "Exit codes: 0 approved; 1 declined; 2 usage error; 3 the service is not there, does not answer\n"
    "or went away before it answered; 4 the service failed the request; 5 timed out. Each error has\n"
    "a message on standard error.\n";

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
        return hl_ask::kExitUsage;
    }
    if (parsed.options.help) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    const std::unique_ptr<hl_decision_client, decltype(&hl_decision_client_free)> client(hl_decision_client_new(),
                                                                                   &hl_decision_client_free);
    if (!client) {
        return Finish(hl_ask::Describe(Outcome::OtherFailure, "no memory"));
    }
    const std::string timeout = std::to_string(parsed.options.timeoutMs.value_or(0));
    int approved = 0;
    const std::uint32_t waitMs = parsed.options.waitForServiceMs.value_or(0);
    int status = hl_decision_connect(client.get(), 0);
    if (status != HL_DECISION_OK && waitMs > 0) {
        // A person at a terminal learns why nothing happens yet; a script's log stays clean.
        if (::isatty(STDERR_FILENO) == 1) {
            std::fprintf(stderr, "hl-ask: waiting up to %u ms for the decision service...\n", waitMs);
        }
        status = hl_decision_connect(client.get(), waitMs);
    }
    if (status == HL_DECISION_OK) {
        status = hl_decision_ask(client.get(), parsed.options.timeoutMs.value_or(0), &approved);
    }
    const std::string error = hl_decision_error(client.get());
    switch (status) {
        case HL_DECISION_OK:
            return Finish(hl_ask::Describe(approved != 0 ? Outcome::Approved : Outcome::Declined, ""));
        case HL_DECISION_NOT_PUBLISHED:
            return Finish(hl_ask::Describe(Outcome::NotPublished, error));
        case HL_DECISION_UNREACHABLE:
            return Finish(hl_ask::Describe(Outcome::NotReachable, error));
        case HL_DECISION_TIMED_OUT:
            return Finish(hl_ask::Describe(Outcome::TimedOut, timeout));
        case HL_DECISION_PEER_GONE:
            return Finish(hl_ask::Describe(Outcome::PeerGone, error));
        case HL_DECISION_SERVER_FAILURE:
            return Finish(hl_ask::Describe(Outcome::ServerFailure, error));
        default:
            return Finish(hl_ask::Describe(Outcome::OtherFailure, error));
    }
}
