#include <common/utils/cancellation_token.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace {

using common::utils::CancellationToken;
using Action = common::utils::ICancellationToken::ExecutionAction;
using namespace std::chrono_literals;

constexpr auto kGenerousTimeout = 30s;

TEST(CancellationToken, StartsWithTheGivenActionAndNoSignal) {
    CancellationToken running(Action::Run);
    Action action = Action::Cancel;
    EXPECT_EQ(running.GetExecutionAction(action), 0);
    EXPECT_EQ(action, Action::Run);
    EXPECT_FALSE(running.IsPaused());
    EXPECT_FALSE(running.IsCanceled());
    EXPECT_EQ(running.GetExecutionAction(action, 10ms), 1) << "construction signals nothing";

    CancellationToken stopped(Action::Cancel);
    EXPECT_TRUE(stopped.IsCanceled());
    EXPECT_FALSE(stopped.IsPaused());
}

TEST(CancellationToken, PauseAndResumeSwitchTheActionAndSignalEachChange) {
    CancellationToken token(Action::Run);
    Action action = Action::Run;

    EXPECT_EQ(token.Pause(), 0);
    EXPECT_TRUE(token.IsPaused());
    EXPECT_EQ(token.GetExecutionAction(action, 0ms), 0);
    EXPECT_EQ(action, Action::Pause);

    EXPECT_EQ(token.Resume(), 0);
    EXPECT_FALSE(token.IsPaused());
    EXPECT_EQ(token.GetExecutionAction(action, 0ms), 0);
    EXPECT_EQ(action, Action::Run);
}

TEST(CancellationToken, TimedGetConsumesTheSignalAndThenTimesOut) {
    CancellationToken token(Action::Run);
    token.Pause();
    Action action = Action::Run;
    EXPECT_EQ(token.GetExecutionAction(action, 0ms), 0);
    action = Action::Run;
    EXPECT_EQ(token.GetExecutionAction(action, 20ms), 1);
    EXPECT_EQ(action, Action::Pause) << "a timed-out get still reports the current action";
}

TEST(CancellationToken, GetWithoutDurationDoesNotConsumeTheSignal) {
    CancellationToken token(Action::Run);
    token.Pause();
    Action action = Action::Run;
    EXPECT_EQ(token.GetExecutionAction(action), 0);
    EXPECT_EQ(action, Action::Pause);
    EXPECT_EQ(token.GetExecutionAction(action, 0ms), 0);
}

TEST(CancellationToken, CancelWakesAWaiterThatThenSeesCancel) {
    CancellationToken token(Action::Run);
    auto waiter = std::async(std::launch::async, [&token] {
        token.Wait();
        return token.IsCanceled();
    });
    EXPECT_EQ(waiter.wait_for(100ms), std::future_status::timeout);
    token.Cancel();
    ASSERT_EQ(waiter.wait_for(kGenerousTimeout), std::future_status::ready);
    EXPECT_TRUE(waiter.get());
}

TEST(CancellationToken, TimedWaiterInAnotherThreadSeesTheNewAction) {
    CancellationToken token(Action::Run);
    auto waiter = std::async(std::launch::async, [&token] {
        Action action = Action::Run;
        const auto result = token.GetExecutionAction(action, 60s);
        return std::make_pair(result, action);
    });
    token.Pause();
    ASSERT_EQ(waiter.wait_for(kGenerousTimeout), std::future_status::ready);
    EXPECT_EQ(waiter.get(), std::make_pair(0, Action::Pause));
}

TEST(CancellationToken, ResumeAfterCancelStoresRunAgain) {
    CancellationToken token(Action::Cancel);
    token.Cancel();
    token.Resume();
    EXPECT_FALSE(token.IsCanceled());
    Action action = Action::Cancel;
    token.GetExecutionAction(action);
    EXPECT_EQ(action, Action::Run);
}

}  // namespace
