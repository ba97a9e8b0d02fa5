// hl-ask's command line and the text and exit code of each way a request can end.
// Pure functions; safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace hl_ask {

struct AskOptions {
    bool help = false;
    std::optional<std::uint32_t> timeoutMs;         // --timeout MS: the caller gives up
    std::optional<std::uint32_t> waitForServiceMs;  // --wait-for-service MS
};

struct ParsedOptions {
    bool ok = false;
    AskOptions options;
    std::string error;
};

ParsedOptions ParseOptions(const std::vector<std::string>& arguments);

enum class Outcome {
    Approved,
    Declined,
    NotPublished,
    NotReachable,
    ServerFailure,
    PeerGone,
    TimedOut,
    OtherFailure
};

struct Report {
    int exitCode;
    std::string text;  // "approved" / "declined" on stdout; the others go to stderr prefixed "hl-ask: "
};

// detail: a code or value that belongs in the message (the odd answer byte, a result code).
Report Describe(Outcome outcome, const std::string& detail);

}  // namespace hl_ask
