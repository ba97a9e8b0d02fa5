#include <common/utils/blocking_queue.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <list>
#include <string>
#include <thread>
#include <vector>

namespace {

using fdn::utils::BlockingQueue;
using namespace std::chrono_literals;

// Long enough that a wrongly blocked call fails the test instead of hanging it.
constexpr auto kGenerousTimeout = 30s;

TEST(BlockingQueue, PushReturnsSizeAndPopsComeOutOldestFirst) {
    BlockingQueue<std::string> queue;
    EXPECT_EQ(queue.Push(std::string("first")), 1u);
    EXPECT_EQ(queue.Push("second"), 2u);
    const std::string third = "third";
    EXPECT_EQ(queue.Push(third), 3u);

    std::string out;
    for (const char* expected : {"first", "second", "third"}) {
        ASSERT_EQ(queue.Pop(out, 1000), 1u);
        EXPECT_EQ(out, expected);
    }
    EXPECT_EQ(queue.Push("fourth"), 1u) << "popped elements must have left the queue";
}

TEST(BlockingQueue, PopWithTimeoutReturnsZeroWhenEmptyAndLeavesOutUnchanged) {
    BlockingQueue<int> queue;
    int out = 42;
    EXPECT_EQ(queue.Pop(out, 100), 0u);
    EXPECT_EQ(out, 42);
}

TEST(BlockingQueue, PopWithoutLimitBlocksUntilAPushFromAnotherThread) {
    BlockingQueue<int> queue;
    auto popped = std::async(std::launch::async, [&queue] {
        int out = 0;
        const unsigned long count = queue.Pop(out, 0);
        return std::make_pair(count, out);
    });

    // A timeout of 0 means no limit, not a poll: the pop must still be waiting.
    EXPECT_EQ(popped.wait_for(200ms), std::future_status::timeout);

    queue.Push(7);
    ASSERT_EQ(popped.wait_for(kGenerousTimeout), std::future_status::ready);
    const auto [count, value] = popped.get();
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(value, 7);
}

TEST(BlockingQueue, TimedPopIsReleasedByAPushBeforeItsDeadline) {
    BlockingQueue<int> queue;
    auto popped = std::async(std::launch::async, [&queue] {
        int out = 0;
        return std::make_pair(queue.Pop(out, 60000), out);
    });
    queue.Push(5);
    ASSERT_EQ(popped.wait_for(kGenerousTimeout), std::future_status::ready);
    EXPECT_EQ(popped.get(), std::make_pair(1ul, 5));
}

TEST(BlockingQueue, PopImplAppendsOneElementToTheEndOfTheGivenList) {
    BlockingQueue<int> queue;
    queue.Push(1);
    queue.Push(2);
    std::list<int> out{10, 20};
    using Policy = BlockingQueue<int>::Policy;
    EXPECT_EQ(queue.PopImpl<Policy::TakeOne>(out, 0ms), 1u);
    EXPECT_EQ(out, (std::list<int>{10, 20, 1}));
    EXPECT_EQ(queue.PopImpl<Policy::TakeOne>(out, 0ms), 1u);
    EXPECT_EQ(out, (std::list<int>{10, 20, 1, 2}));
    EXPECT_EQ(queue.PopImpl<Policy::TakeOne>(out, 10ms), 0u);
    EXPECT_EQ(out.size(), 4u);
}

TEST(BlockingQueue, ClosedQueueDropsPushesButDeliversWhatItHolds) {
    BlockingQueue<int> queue;
    queue.Push(1);
    queue.Push(2);
    queue.CloseForTesting();

    EXPECT_EQ(queue.Push(3), 2u) << "a push to a closed queue reports the unchanged size";

    int out = 0;
    EXPECT_EQ(queue.Pop(out, 0), 1u);
    EXPECT_EQ(out, 1);
    EXPECT_EQ(queue.Pop(out, 0), 1u);
    EXPECT_EQ(out, 2);

    // Empty and closed: returns at once even without a limit (a hang here ends in the test timeout).
    out = 99;
    EXPECT_EQ(queue.Pop(out, 0), 0u);
    EXPECT_EQ(out, 99) << "the dropped value must not come out";
}

TEST(BlockingQueue, ClosingReleasesAPopWaitingWithoutLimit) {
    BlockingQueue<int> queue;
    auto popped = std::async(std::launch::async, [&queue] {
        int out = -1;
        return std::make_pair(queue.Pop(out, 0), out);
    });
    EXPECT_EQ(popped.wait_for(100ms), std::future_status::timeout);
    queue.CloseForTesting();
    ASSERT_EQ(popped.wait_for(kGenerousTimeout), std::future_status::ready);
    EXPECT_EQ(popped.get(), std::make_pair(0ul, -1));
}

TEST(BlockingQueue, ManyProducersDeliverEveryValueExactlyOnce) {
    constexpr int kProducers = 4;
    constexpr int kPerProducer = 500;
    BlockingQueue<int> queue;

    std::vector<std::thread> producers;
    for (int p = 0; p < kProducers; ++p) {
        producers.emplace_back([&queue, p] {
            for (int i = 0; i < kPerProducer; ++i) {
                queue.Push(p * kPerProducer + i);
            }
        });
    }

    std::vector<int> received;
    std::vector<int> lastPerProducer(kProducers, -1);
    bool perProducerOrderKept = true;
    for (int i = 0; i < kProducers * kPerProducer; ++i) {
        int value = -1;
        ASSERT_EQ(queue.Pop(value, 30000), 1u);
        const int producer = value / kPerProducer;
        perProducerOrderKept = perProducerOrderKept && value > lastPerProducer[producer];
        lastPerProducer[producer] = value;
        received.push_back(value);
    }
    for (auto& producer : producers) {
        producer.join();
    }

    EXPECT_TRUE(perProducerOrderKept) << "values of one producer must keep their order";
    std::sort(received.begin(), received.end());
    std::vector<int> expected(kProducers * kPerProducer);
    for (int i = 0; i < kProducers * kPerProducer; ++i) {
        expected[i] = i;
    }
    EXPECT_EQ(received, expected);
    int out = -1;
    EXPECT_EQ(queue.Pop(out, 10), 0u);
}

}  // namespace
