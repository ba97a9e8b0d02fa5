// The decision queue's own answer once closed. Order and waiting are the blocking queue's tests' part,
// a get waiting for a click on another thread the end-to-end tests'.
#include "business/interactors/user_decision_interactor.h"

#include <gtest/gtest.h>

namespace {

using access_arbiter::interactors::UserDecisionInteractor;
using access_arbiter::ui::mode::UserDecision;

TEST(UserDecisionInteractor, ClosedQueueDropsSetsAndGetReturnsSuccessWithDecisionUntouched) {
    UserDecisionInteractor interactor;
    interactor.SetUserDecision(UserDecision::Decline);
    interactor.CloseQueueForTesting();
    EXPECT_EQ(interactor.SetUserDecision(UserDecision::Approve), 0);

    UserDecision decision = UserDecision::Approve;
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, UserDecision::Decline) << "what was queued before closing is still delivered";
    const auto untouched = static_cast<UserDecision>(7);
    decision = untouched;
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, untouched) << "the dropped Approve must not arrive, nor a write of any value";
}

}  // namespace
