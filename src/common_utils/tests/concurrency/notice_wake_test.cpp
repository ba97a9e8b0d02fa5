// One thread blocked in a notice's wait without limit, another dropping and waking it.
#include <common_utils/app_utils/notice/notice.h>
#include <common_utils/app_utils/notice/notice_api.h>

#include <diagnostics/result_code.h>
#include <platform/kn_channel.h>

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <vector>

namespace {

using common_utils::app_utils::notice::Notice;

TEST(NoticeWake, DropAndWakeOnAnotherThreadEndsAWaitWithoutLimitWithNotFound) {
    unsigned int mine = 0;
    unsigned int theirs = 0;
    ASSERT_EQ(KnHandleCreatePair(&mine, &theirs), 0);
    Notice notice(std::make_shared<common_utils::app_utils::notice::NoticeApi>());
    ASSERT_EQ(notice.SubscribeToObject(theirs, 0x10001U, 1), 0);
    auto waiting = std::async(std::launch::async, [&] {
        std::vector<EventDesc> events;
        return notice.WaitEvents(1, events);
    });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    EXPECT_EQ(notice.DropAndWake(), 0);
    EXPECT_EQ(waiting.get(), hca::result_code::kNotFound);
    KnHandleClose(mine);
    KnHandleClose(theirs);
}

}  // namespace
