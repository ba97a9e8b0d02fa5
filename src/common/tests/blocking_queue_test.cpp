#include <common/utils/blocking_queue.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>

namespace {

using fdn::utils::BlockingQueue;
using namespace std::chrono_literals;

// Pops without limit on another thread; the pair is (count, value).
std::future<std::pair<unsigned long, int>> PopAsync(BlockingQueue<int>& queue, unsigned int timeoutMs) {
    return std::async(std::launch::async, [&queue, timeoutMs] {
        int out = -1;
        const unsigned long count = queue.Pop(out, timeoutMs);
        return std::make_pair(count, out);
    });
}

TEST(BlockingQueue, PushReturnsSizeAndPopsComeOutOldestFirst) {
    BlockingQueue<std::string> queue;
    EXPECT_EQ(queue.Push(std::string("first")), 1u);
    const std::string second = "second";
    EXPECT_EQ(queue.Push(second), 2u);
    std::string out;
    for (const char* expected : {"first", "second"}) {
        ASSERT_EQ(queue.Pop(out, 1000), 1u);
        EXPECT_EQ(out, expected);
    }
    EXPECT_EQ(queue.Push("third"), 1u) << "popped elements must have left the queue";
}

TEST(BlockingQueue, TimedPopOnAnEmptyQueueReturnsZeroAndLeavesOutUnchanged) {
    BlockingQueue<int> queue;
    int out = 42;
    EXPECT_EQ(queue.Pop(out, 50), 0u);
    EXPECT_EQ(out, 42);
}

TEST(BlockingQueue, PopIsReleasedByAPushFromAnotherThreadWithAndWithoutLimit) {
    for (unsigned int timeoutMs : {0u, 60000u}) {
        SCOPED_TRACE(timeoutMs);
        BlockingQueue<int> queue;
        auto popped = PopAsync(queue, timeoutMs);
        // A timeout of 0 means no limit, not a poll.
        EXPECT_EQ(popped.wait_for(100ms), std::future_status::timeout);
        queue.Push(7);
        ASSERT_EQ(popped.wait_for(30s), std::future_status::ready);
        EXPECT_EQ(popped.get(), std::make_pair(1ul, 7));
    }
}

TEST(BlockingQueue, ClosedQueueDropsPushesDeliversWhatItHoldsAndReleasesWaiters) {
    BlockingQueue<int> waitedOn;
    auto popped = PopAsync(waitedOn, 0);
    EXPECT_EQ(popped.wait_for(100ms), std::future_status::timeout);
    waitedOn.CloseForTesting();
    ASSERT_EQ(popped.wait_for(30s), std::future_status::ready);
    EXPECT_EQ(popped.get(), std::make_pair(0ul, -1));

    BlockingQueue<int> queue;
    queue.Push(1);
    queue.CloseForTesting();
    EXPECT_EQ(queue.Push(3), 1u) << "a push to a closed queue reports the unchanged size";
    int out = 0;
    EXPECT_EQ(queue.Pop(out, 0), 1u);
    EXPECT_EQ(out, 1);
    out = 99;
    EXPECT_EQ(queue.Pop(out, 0), 0u) << "empty and closed returns at once even without a limit";
    EXPECT_EQ(out, 99) << "the dropped value must not come out";
}

}  // namespace
