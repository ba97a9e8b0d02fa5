#include "outcome.h"

namespace hl_ask {

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
