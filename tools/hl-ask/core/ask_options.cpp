#include "ask_options.h"

#include <charconv>

namespace hl_ask {

namespace {

bool ParseMs(const std::string& text, std::uint32_t& out) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
    return !text.empty() && error == std::errc() && end == text.data() + text.size();
}

}  // namespace

ParsedOptions ParseOptions(const std::vector<std::string>& arguments) {
    ParsedOptions parsed;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            parsed.options.help = true;
            continue;
        }
        if (argument == "--timeout" || argument == "--wait-for-service") {
            std::uint32_t ms = 0;
            if (i + 1 >= arguments.size() || !ParseMs(arguments[i + 1], ms)) {
                parsed.error = argument + " needs a number of milliseconds";
                return parsed;
            }
            ++i;
            (argument == "--timeout" ? parsed.options.timeoutMs : parsed.options.waitForServiceMs) = ms;
            continue;
        }
        parsed.error = "unknown argument '" + argument + "'";
        return parsed;
    }
    parsed.ok = true;
    return parsed;
}

Report Describe(Outcome outcome, const std::string& detail) {
    switch (outcome) {
        case Outcome::Approved:
            return {0, "approved"};
        case Outcome::Declined:
            return {1, "declined"};
        case Outcome::NotPublished:
            return {kExitUnreachable, "service not found: nothing publishes hl.access_arbiter.AccessArbiter.accessArbiter" +
                           (detail.empty() ? std::string() : " (" + detail + ")")};
        case Outcome::NotReachable:
            return {kExitUnreachable,
                    "service not found: the decision service's server does not answer (" + detail + ")"};
        case Outcome::ServerFailure:
            return {kExitFailed, "server failure: the decision service could not answer"};
        case Outcome::PeerGone:
            return {kExitUnreachable, "peer gone: the decision service closed the channel or died before answering"};
        case Outcome::TimedOut:
            return {kExitTimedOut, "timed out after " + detail + " ms without a decision"};
        case Outcome::OtherFailure:
            return {kExitFailed, "request failed: " + detail};
    }
    return {kExitFailed, "request failed"};
}

}  // namespace hl_ask
