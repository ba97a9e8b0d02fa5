// Notices over object pairs in one process: raised events, the closed event, waking and timeouts.
#include <gtest/gtest.h>

#include <future>
#include <thread>

#include <platform/platform.h>

namespace hos::platform {
namespace {

using namespace std::chrono_literals;

constexpr unsigned int kUpdate = 0x10000;
constexpr unsigned int kMask = KN_NOTICE_EVENT_CLOSED | kUpdate;

class NoticeTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(KnHandleCreatePair(&m_near, &m_far), 0);
        ASSERT_EQ(KnNoticeCreate(&m_notice), 0);
    }
    void TearDown() override {
        KnNoticeRelease(m_notice);
        KnHandleClose(m_near);
        KnHandleClose(m_far);
    }

    int Wait(unsigned long timeoutMs, std::vector<EventDesc>& events, unsigned long maxCount = 4) {
        events.assign(maxCount, EventDesc{});
        unsigned long count = 0;
        const int rc = KnNoticeGetEvent(m_notice, timeoutMs, maxCount, events.data(), &count);
        events.resize(rc == 0 ? count : 0);
        return rc;
    }

    unsigned int m_near = NK_INVALID_HANDLE;
    unsigned int m_far = NK_INVALID_HANDLE;
    SNotice* m_notice = nullptr;
};

TEST_F(NoticeTest, EventRaisedAtTheOtherEndIsReportedWithItsIdAndMask) {
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 42), 0);
    ASSERT_EQ(KnNoticeSetObjectEvent(m_far, kUpdate), 0);
    std::vector<EventDesc> events;
    ASSERT_EQ(Wait(5000, events), 0);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].handle, m_near);
    EXPECT_EQ(events[0].mask, kUpdate);
    EXPECT_EQ(events[0].eventId, 42u);
    // Consumed: the next wait runs out.
    EXPECT_EQ(Wait(50, events), NK_ETIMEOUT);
}

TEST_F(NoticeTest, RaisedBitsOutsideTheMaskAreNotReported) {
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 1), 0);
    ASSERT_EQ(KnNoticeSetObjectEvent(m_far, 0x4 | kUpdate), 0);
    std::vector<EventDesc> events;
    ASSERT_EQ(Wait(5000, events), 0);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].mask, kUpdate);
}

TEST_F(NoticeTest, ClosingTheOtherEndRaisesTheClosedEventOnce) {
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 7), 0);
    ASSERT_EQ(KnHandleClose(m_far), 0);
    m_far = NK_INVALID_HANDLE;
    std::vector<EventDesc> events;
    ASSERT_EQ(Wait(5000, events), 0);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].mask & KN_NOTICE_EVENT_CLOSED, KN_NOTICE_EVENT_CLOSED);
    EXPECT_EQ(Wait(50, events), NK_ETIMEOUT);
}

TEST_F(NoticeTest, WaitWithNothingRaisedRunsOutWithTimeoutCode) {
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 1), 0);
    std::vector<EventDesc> events;
    EXPECT_EQ(Wait(30, events), NK_ETIMEOUT);
    EXPECT_EQ(Wait(0, events), NK_ETIMEOUT);
}

TEST_F(NoticeTest, DropAndWakeWakesAWaiterOnAnotherThreadAndLaterWaitsReturnAtOnce) {
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 1), 0);
    auto waiter = std::async(std::launch::async, [this] {
        EventDesc event{};
        unsigned long count = 0;
        return KnNoticeGetEvent(m_notice, NK_TIMEOUT_INFINITE, 1, &event, &count);
    });
    std::this_thread::sleep_for(50ms);
    ASSERT_EQ(KnNoticeDropAndWake(m_notice), 0);
    ASSERT_EQ(waiter.wait_for(10s), std::future_status::ready);
    EXPECT_EQ(waiter.get(), NK_ENOTFOUND);
    std::vector<EventDesc> events;
    EXPECT_EQ(Wait(NK_TIMEOUT_INFINITE, events), NK_ENOTFOUND);
}

TEST_F(NoticeTest, SubscriptionMadeWhileWaitingIsWatched) {
    auto waiter = std::async(std::launch::async, [this] {
        std::vector<EventDesc> events;
        const int rc = Wait(10000, events);
        return rc == 0 && events.size() == 1 ? events[0].eventId : 0ul;
    });
    std::this_thread::sleep_for(50ms);
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 99), 0);
    ASSERT_EQ(KnNoticeSetObjectEvent(m_far, kUpdate), 0);
    EXPECT_EQ(waiter.get(), 99ul);
}

TEST_F(NoticeTest, UnsubscribedHandleIsNoLongerReported) {
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 5), 0);
    EXPECT_EQ(KnNoticeUnsubscribeFromObject(m_notice, m_near), 0);
    EXPECT_EQ(KnNoticeUnsubscribeFromObject(m_notice, m_near), NK_ENOTFOUND);
    ASSERT_EQ(KnNoticeSetObjectEvent(m_far, kUpdate), 0);
    std::vector<EventDesc> events;
    EXPECT_EQ(Wait(50, events), NK_ETIMEOUT);

    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 6), 0);
    EXPECT_EQ(KnNoticeUnsubscribeFromEvent(m_notice, 6), 0);
    EXPECT_EQ(KnNoticeUnsubscribeFromEvent(m_notice, 6), NK_ENOTFOUND);
}

TEST_F(NoticeTest, EventsOfSeveralHandlesAreLimitedToMaxCount) {
    unsigned int secondNear = NK_INVALID_HANDLE;
    unsigned int secondFar = NK_INVALID_HANDLE;
    ASSERT_EQ(KnHandleCreatePair(&secondNear, &secondFar), 0);
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_near, kMask, 1), 0);
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, secondNear, kMask, 2), 0);
    ASSERT_EQ(KnNoticeSetObjectEvent(m_far, kUpdate), 0);
    ASSERT_EQ(KnNoticeSetObjectEvent(secondFar, kUpdate), 0);
    std::vector<EventDesc> events;
    ASSERT_EQ(Wait(5000, events, 1), 0);
    ASSERT_EQ(events.size(), 1u);
    const unsigned long first = events[0].eventId;
    ASSERT_EQ(Wait(5000, events, 1), 0);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_NE(events[0].eventId, first);
    KnHandleClose(secondNear);
    KnHandleClose(secondFar);
}

TEST_F(NoticeTest, BadArgumentsAreRefused) {
    EXPECT_EQ(KnNoticeSubscribeToObject(m_notice, 0xABCDEF, kMask, 1), NK_EBADHANDLE);
    EXPECT_EQ(KnNoticeSetObjectEvent(0xABCDEF, kUpdate), NK_EBADHANDLE);
    EXPECT_EQ(KnNoticeSubscribeToObject(nullptr, m_near, kMask, 1), NK_EINVAL);
    unsigned long count = 0;
    EXPECT_EQ(KnNoticeGetEvent(m_notice, 0, 1, nullptr, &count), NK_EINVAL);
}

TEST_F(NoticeTest, RaiseAfterTheOtherEndClosedFailsWithClosed) {
    ASSERT_EQ(KnHandleClose(m_near), 0);
    m_near = NK_INVALID_HANDLE;
    EXPECT_EQ(KnNoticeSetObjectEvent(m_far, kUpdate), NK_ECLOSED);
}

}  // namespace
}  // namespace hos::platform
