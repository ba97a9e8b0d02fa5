#include <common/utils/event.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace {

using common::utils::Event;
using namespace std::chrono_literals;

TEST(Event, AutoResetWaitConsumesTheSignalAndTwoSetsGiveOneWakeUp) {
    Event event(true, false);
    EXPECT_FALSE(event.Wait(20ms));
    event.Set();
    event.Set();
    EXPECT_TRUE(event.Wait(0ms));
    EXPECT_FALSE(event.Wait(20ms)) << "a finished wait must clear an auto-reset event";

    Event signaled(true, true);
    EXPECT_TRUE(signaled.Wait(0ms));
    EXPECT_FALSE(signaled.Wait(0ms));
}

TEST(Event, ManualResetStaysSignaledAcrossWaits) {
    Event event(false, false);
    EXPECT_FALSE(event.Wait(10ms));
    event.Set();
    event.Wait();
    EXPECT_TRUE(event.Wait(0ms));
    EXPECT_TRUE(event.Wait(0ms));
}

TEST(Event, WaitWithoutLimitIsReleasedBySetFromAnotherThread) {
    Event event(true, false);
    auto waiter = std::async(std::launch::async, [&event] { event.Wait(); });
    EXPECT_EQ(waiter.wait_for(100ms), std::future_status::timeout);
    event.Set();
    EXPECT_EQ(waiter.wait_for(30s), std::future_status::ready);
    EXPECT_FALSE(event.Wait(0ms)) << "the released wait must have consumed the signal";
}

}  // namespace
