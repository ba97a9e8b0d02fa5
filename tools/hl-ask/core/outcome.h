// The text and exit code of each way an hl-ask request can end.
// Pure functions; safe from any thread.
#pragma once

#include <string>

namespace hl_ask {

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

// The exit codes, as zenity's where they meet: 0 approved, 1 declined, 2 usage, 3 no service to ask
// (not published, not answering, or gone before it answered), 4 the service failed the request,
// 5 no decision within --timeout.
inline constexpr int kExitUnreachable = 3;
inline constexpr int kExitFailed = 4;
inline constexpr int kExitTimedOut = 5;

struct Report {
    int exitCode;
    std::string text;  // "approved" / "declined" on stdout; the others go to stderr prefixed "hl-ask: "
};

// detail: a code or value that belongs in the message (the odd answer byte, a result code).
Report Describe(Outcome outcome, const std::string& detail);

}  // namespace hl_ask
