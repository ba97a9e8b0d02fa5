// Notice over the hosted platform's notices: result translation, log lines and the waits' contract.
#include <common_utils/app_utils/notice/notice.h>
#include <common_utils/app_utils/notice/notice_api.h>
#include <common_utils/app_utils/notice/notice_factory.h>

#include <diagnostics/check_failure_text_for_testing.h>
#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/result_code.h>
#include <platform/kn_channel.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using common_utils::app_utils::notice::Notice;
using common_utils::app_utils::notice::NoticeApi;
using namespace std::chrono_literals;

TEST(NoticeResult, PlatformResultsTranslateToTheProgramsCodes) {
    const struct {
        unsigned int platform;
        std::int32_t expected;
    } rows[] = {{0, 0},
                {0x90000013u, hca::result_code::kNotFound},
                {0x90000014u, hca::result_code::kOperationTimeout},
                {0x90000003u, hca::result_code::kUnspecifiedError},
                {0x80000046u, hca::result_code::kUnspecifiedError},
                {1, hca::result_code::kUnspecifiedError}};
    for (const auto& row : rows) {
        EXPECT_EQ(Notice::TranslateResult(static_cast<int>(row.platform)), row.expected)
            << std::hex << row.platform;
    }
}

class HostedNotice : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(KnHandleCreatePair(&m_mine, &m_theirs), 0); }
    void TearDown() override {
        KnHandleClose(m_mine);
        KnHandleClose(m_theirs);
    }

    hos::logger::LogCaptureForTesting m_log;
    common_utils::app_utils::notice::NoticeFactory m_factory{std::make_shared<NoticeApi>()};
    unsigned int m_mine = 0xffffffffU;
    unsigned int m_theirs = 0xffffffffU;
};

TEST_F(HostedNotice, WaitsReportTimeoutInvalidTimeAndEventsAndReplaceEventsOnlyOnSuccess) {
    auto notice = m_factory.CreateNotice();
    ASSERT_EQ(notice->SubscribeToObject(m_theirs, 0x10001U, 7), 0);
    const std::vector<EventDesc> untouched(3, EventDesc{1, 2, 3});
    std::vector<EventDesc> events = untouched;

    EXPECT_EQ(notice->WaitForEvents(-1ms, 1, events), hca::result_code::kInvalidArgument);
    EXPECT_TRUE(m_log.Contains("Notice: WaitForEvents: failed to wait for events: time isn't valid - -1"));
    EXPECT_EQ(notice->WaitForEvents(20ms, 1, events), hca::result_code::kOperationTimeout);
    // The log line shows the platform's own result.
    EXPECT_TRUE(m_log.Contains("KnNoticeGetEvent result: 0x90000014"));
    ASSERT_EQ(events.size(), untouched.size());
    EXPECT_EQ(events[0].eventId, 3U);

    EXPECT_EQ(notice->SetObjectEvent(m_mine, 0x10000U), 0);
    EXPECT_TRUE(m_log.Contains("KnNoticeSetObjectEvent result: 0x0"));
    EXPECT_EQ(notice->WaitEvents(1, events), 0);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].mask, 0x10000U);
    EXPECT_EQ(events[0].eventId, 7U);

    EXPECT_EQ(notice->UnsubscribeFromObject(m_theirs), 0);
    EXPECT_EQ(notice->UnsubscribeFromObject(m_theirs), hca::result_code::kNotFound);
    EXPECT_TRUE(m_log.Contains("KnNoticeUnsubscribeFromObject result: 0x90000013"));
    EXPECT_EQ(notice->SetObjectEvent(0x123456U, 1), hca::result_code::kUnspecifiedError);

    EXPECT_EQ(notice->DropAndWake(), 0);
    EXPECT_EQ(notice->WaitForEvents(1000ms, 1, events), hca::result_code::kNotFound);
    notice.reset();
    EXPECT_TRUE(m_log.Contains("KnNoticeRelease result 0x0"));
}

class FailingCreateApi final : public common_utils::app_utils::notice::INoticeApi {
public:
    int KnNoticeCreate(SNotice**) const override { return static_cast<int>(0x90000005u); }
    int KnNoticeSubscribeToObject(SNotice*, unsigned int, unsigned int, unsigned long) const override {
        return 0;
    }
    int KnNoticeGetEvent(SNotice*, unsigned long, unsigned long, EventDesc*, unsigned long*) const override {
        return 0;
    }
    int KnNoticeUnsubscribeFromObject(SNotice*, unsigned int) const override { return 0; }
    int KnNoticeUnsubscribeFromEvent(SNotice*, unsigned long) const override { return 0; }
    int KnNoticeDropAndWake(SNotice*) const override { return 0; }
    int KnNoticeRelease(SNotice*) const override { return 0; }
    int KnNoticeSetObjectEvent(unsigned int, unsigned int) const override { return 0; }
};

TEST(NoticeConstruction, NullApiAndFailedCreateThrowWithTheirTexts) {
    const auto message = [](auto make) { return hca::testing::CheckFailureTextForTesting(make); };
    EXPECT_THAT(message([] { Notice notice(nullptr); }), testing::HasSubstr("Notice api is nullptr"));
    EXPECT_THAT(message([] { common_utils::app_utils::notice::NoticeFactory factory(nullptr); }),
                testing::HasSubstr("Notice api is nullptr"));
    EXPECT_THAT(message([] { Notice notice(std::make_shared<FailingCreateApi>()); }),
                testing::HasSubstr("Notice: failed to create notice 0x90000005"));
}

}  // namespace
