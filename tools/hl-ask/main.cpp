// hl-ask: asks the decision service for a person's decision and prints it.
#include <access_arbiter/decision_client.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include <hl_cli/tool.h>

#include "core/outcome.h"

namespace {

using hl_ask::Outcome;

constexpr const char* kDescription =
    "Finds the decision service through the registry (type hl.access_arbiter.AccessArbiter.accessArbiter),\n"
    "calls GetUserDecision and prints 'approved' or 'declined'. The service answers only once a person\n"
    "has decided, so without --timeout this waits as long as the person takes. Each error has a message\n"
    "on standard error.";

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
    hl::cli::Tool tool("hl-ask", kDescription,
                       {{0, "approved"},
                        {1, "declined"},
                        {hl::cli::kExitUsage, "usage error"},
                        {hl_ask::kExitUnreachable, "the service is not there, does not answer or went away before it answered"},
                        {hl_ask::kExitFailed, "the service failed the request"},
                        {hl_ask::kExitTimedOut, "no decision within --timeout"}});
    std::uint32_t timeoutMs = 0;
    std::uint32_t waitMs = 0;
    tool.App().add_option("--timeout", timeoutMs, "give up after MS milliseconds of waiting for the answer (0: no limit)")
        ->option_text("MS");
    tool.App().add_option("--wait-for-service", waitMs,
                          "wait up to MS milliseconds for the service to be published and answer (on a terminal, "
                          "one line says that it waits)")
        ->option_text("MS");
    if (const auto status = tool.Parse(argc, argv)) {
        return *status;
    }
    const std::unique_ptr<hl_decision_client, decltype(&hl_decision_client_free)> client(hl_decision_client_new(),
                                                                                   &hl_decision_client_free);
    if (!client) {
        return Finish(hl_ask::Describe(Outcome::OtherFailure, "no memory"));
    }
    const std::string timeout = std::to_string(timeoutMs);
    int approved = 0;
    int status = hl_decision_connect(client.get(), 0);
    if (status != HL_DECISION_OK && waitMs > 0) {
        // A person at a terminal learns why nothing happens yet; a script's log stays clean.
        if (::isatty(STDERR_FILENO) == 1) {
            std::fprintf(stderr, "hl-ask: waiting up to %u ms for the decision service...\n", waitMs);
        }
        status = hl_decision_connect(client.get(), waitMs);
    }
    if (status == HL_DECISION_OK) {
        status = hl_decision_ask(client.get(), timeoutMs, &approved);
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
