#include <common/utils/cancellation_token.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace {

using common::utils::CancellationToken;
using Action = common::utils::ICancellationToken::ExecutionAction;
using namespace std::chrono_literals;

TEST(CancellationToken, StartsWithTheGivenActionAndNoSignal) {
    CancellationToken running(Action::Run);
    Action action = Action::Cancel;
    EXPECT_EQ(running.GetExecutionAction(action, 10ms), 1) << "construction signals nothing";
    EXPECT_EQ(action, Action::Run);
    EXPECT_FALSE(running.IsPaused());
    EXPECT_FALSE(running.IsCanceled());
    EXPECT_TRUE(CancellationToken(Action::Cancel).IsCanceled());
}

TEST(CancellationToken, EachChangeSignalsOnceAndOnlyATimedGetConsumesIt) {
    CancellationToken token(Action::Run);
    Action action = Action::Run;
    EXPECT_EQ(token.Pause(), 0);
    EXPECT_TRUE(token.IsPaused());
    EXPECT_EQ(token.GetExecutionAction(action), 0);
    EXPECT_EQ(action, Action::Pause);
    EXPECT_EQ(token.GetExecutionAction(action, 0ms), 0) << "a get without duration leaves the signal";
    action = Action::Run;
    EXPECT_EQ(token.GetExecutionAction(action, 20ms), 1);
    EXPECT_EQ(action, Action::Pause) << "a timed-out get still reports the current action";

    token.Cancel();
    EXPECT_EQ(token.Resume(), 0);
    EXPECT_FALSE(token.IsCanceled()) << "resume stores Run even after a cancel";
    EXPECT_EQ(token.GetExecutionAction(action, 0ms), 0);
    EXPECT_EQ(action, Action::Run);
}

TEST(CancellationToken, CancelWakesAWaiterInAnotherThread) {
    CancellationToken token(Action::Run);
    auto waiter = std::async(std::launch::async, [&token] {
        token.Wait();
        return token.IsCanceled();
    });
    EXPECT_EQ(waiter.wait_for(100ms), std::future_status::timeout);
    token.Cancel();
    ASSERT_EQ(waiter.wait_for(30s), std::future_status::ready);
    EXPECT_TRUE(waiter.get());
}

}  // namespace
