#include <common/utils/event.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace {

using common::utils::Event;
using namespace std::chrono_literals;

constexpr auto kGenerousTimeout = 30s;

TEST(Event, AutoResetWaitConsumesTheSignal) {
    Event event(true, false);
    event.Set();
    EXPECT_TRUE(event.Wait(0ms));
    EXPECT_FALSE(event.Wait(20ms)) << "a finished wait must clear an auto-reset event";
}

TEST(Event, TwoSetsBeforeAWaitGiveOneWakeUp) {
    Event event(true, false);
    event.Set();
    event.Set();
    event.Wait();
    EXPECT_FALSE(event.Wait(20ms));
}

TEST(Event, ConstructedSignaledReleasesTheFirstWait) {
    Event event(true, true);
    EXPECT_TRUE(event.Wait(0ms));
    EXPECT_FALSE(event.Wait(0ms));
}

TEST(Event, ManualResetStaysSignaledAcrossWaits) {
    Event event(false, false);
    EXPECT_FALSE(event.Wait(10ms));
    event.Set();
    EXPECT_TRUE(event.Wait(0ms));
    EXPECT_TRUE(event.Wait(0ms));
    event.Wait();
    EXPECT_TRUE(event.Wait(10ms));
}

TEST(Event, TimedWaitOnAnUnsignaledEventReturnsFalse) {
    Event event(true, false);
    EXPECT_FALSE(event.Wait(50ms));
}

TEST(Event, WaitWithoutLimitIsReleasedBySetFromAnotherThread) {
    Event event(true, false);
    auto waiter = std::async(std::launch::async, [&event] { event.Wait(); });
    EXPECT_EQ(waiter.wait_for(100ms), std::future_status::timeout);
    event.Set();
    EXPECT_EQ(waiter.wait_for(kGenerousTimeout), std::future_status::ready);
    EXPECT_FALSE(event.Wait(0ms)) << "the released wait must have consumed the signal";
}

TEST(Event, ManualResetSetReleasesEveryWaiter) {
    Event event(false, false);
    auto first = std::async(std::launch::async, [&event] { return event.Wait(60s); });
    auto second = std::async(std::launch::async, [&event] { return event.Wait(60s); });
    event.Set();
    ASSERT_EQ(first.wait_for(kGenerousTimeout), std::future_status::ready);
    ASSERT_EQ(second.wait_for(kGenerousTimeout), std::future_status::ready);
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
}

}  // namespace
