#include <access_arbiter/interactors/user_decision_interactor.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <QMetaEnum>

#include <chrono>
#include <future>
#include <memory>

namespace {

using access_arbiter::interactors::IUserDecisionGetter;
using access_arbiter::interactors::IUserDecisionSetter;
using access_arbiter::interactors::UserDecisionInteractor;
using access_arbiter::ui::mode::UserDecision;
using namespace std::chrono_literals;

constexpr auto kGenerousTimeout = 30s;

TEST(UserDecision, IsAScopedEnumOfTheNamespaceMetaObjectWithWireValues) {
    static_assert(sizeof(UserDecision) == 4);
    const QMetaEnum metaEnum = QMetaEnum::fromType<UserDecision>();
    ASSERT_TRUE(metaEnum.isValid());
    EXPECT_TRUE(metaEnum.isScoped());
    EXPECT_STREQ(metaEnum.name(), "UserDecision");
    EXPECT_EQ(metaEnum.enclosingMetaObject(), &access_arbiter::ui::mode::staticMetaObject);
    EXPECT_EQ(metaEnum.keyToValue("Decline"), 0);
    EXPECT_EQ(metaEnum.keyToValue("Approve"), 1);
}

TEST(UserDecisionInteractor, DecisionsSetBeforeAnyGetComeOutInOrderWithoutBlocking) {
    hos::logger::LogCaptureForTesting capture;
    UserDecisionInteractor interactor;
    EXPECT_EQ(interactor.SetUserDecision(UserDecision::Approve), 0);
    EXPECT_EQ(interactor.SetUserDecision(UserDecision::Decline), 0);

    UserDecision decision = UserDecision::Decline;
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, UserDecision::Approve);
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, UserDecision::Decline);
    EXPECT_EQ(capture.Count(hos::logger::LogLevel::Error), 0u);
}

TEST(UserDecisionInteractor, GetThroughTheGetterHalfBlocksUntilASetFromAnotherThread) {
    auto interactor = std::make_shared<UserDecisionInteractor>();
    std::shared_ptr<IUserDecisionGetter> getter = interactor;
    std::shared_ptr<IUserDecisionSetter> setter = interactor;
    interactor.reset();  // the two halves keep the queue alive between them

    auto request = std::async(std::launch::async, [getter] {
        UserDecision decision = UserDecision::Decline;
        const std::int32_t result = getter->GetUserDecision(decision);
        return std::make_pair(result, decision);
    });
    EXPECT_EQ(request.wait_for(200ms), std::future_status::timeout) << "the get must wait for a decision";

    auto click =
        std::async(std::launch::async, [setter] { return setter->SetUserDecision(UserDecision::Approve); });
    ASSERT_EQ(click.wait_for(kGenerousTimeout), std::future_status::ready);
    EXPECT_EQ(click.get(), 0);
    ASSERT_EQ(request.wait_for(kGenerousTimeout), std::future_status::ready);
    EXPECT_EQ(request.get(), std::make_pair(0, UserDecision::Approve));
}

TEST(UserDecisionInteractor, ClosedQueueDropsSetsAndGetReturnsSuccessWithDecisionUntouched) {
    hos::logger::LogCaptureForTesting capture;
    UserDecisionInteractor interactor;
    interactor.SetUserDecision(UserDecision::Decline);
    interactor.CloseQueueForTesting();

    EXPECT_EQ(interactor.SetUserDecision(UserDecision::Approve), 0);

    UserDecision decision = UserDecision::Approve;
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, UserDecision::Decline) << "what was queued before closing is still delivered";

    decision = UserDecision::Approve;
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, UserDecision::Approve)
        << "the dropped Approve must not arrive, nor a write of any value";
    EXPECT_EQ(capture.Count(hos::logger::LogLevel::Error), 0u);
}

}  // namespace
