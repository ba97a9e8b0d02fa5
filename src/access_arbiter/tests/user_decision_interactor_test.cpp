#include <access_arbiter/interactors/user_decision_interactor.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>

namespace {

using access_arbiter::interactors::UserDecisionInteractor;
using access_arbiter::ui::mode::UserDecision;
using namespace std::chrono_literals;

TEST(UserDecisionInteractor, DecisionsSetBeforeAnyGetComeOutInOrderWithoutBlocking) {
    UserDecisionInteractor interactor;
    EXPECT_EQ(interactor.SetUserDecision(UserDecision::Approve), 0);
    EXPECT_EQ(interactor.SetUserDecision(UserDecision::Decline), 0);
    UserDecision decision = UserDecision::Decline;
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, UserDecision::Approve);
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, UserDecision::Decline);
}

TEST(UserDecisionInteractor, GetThroughTheGetterHalfBlocksUntilASetFromAnotherThread) {
    auto interactor = std::make_shared<UserDecisionInteractor>();
    std::shared_ptr<access_arbiter::interactors::IUserDecisionGetter> getter = interactor;
    std::shared_ptr<access_arbiter::interactors::IUserDecisionSetter> setter = interactor;
    interactor.reset();  // the two halves keep the queue alive between them

    auto request = std::async(std::launch::async, [getter] {
        UserDecision decision = UserDecision::Decline;
        const std::int32_t result = getter->GetUserDecision(decision);
        return std::make_pair(result, decision);
    });
    EXPECT_EQ(request.wait_for(200ms), std::future_status::timeout) << "the get must wait for a decision";
    auto click =
        std::async(std::launch::async, [setter] { return setter->SetUserDecision(UserDecision::Approve); });
    EXPECT_EQ(click.get(), 0);
    ASSERT_EQ(request.wait_for(30s), std::future_status::ready);
    EXPECT_EQ(request.get(), std::make_pair(0, UserDecision::Approve));
}

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
