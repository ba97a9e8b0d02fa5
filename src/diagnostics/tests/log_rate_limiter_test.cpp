#include <diagnostics/log_rate_limiter.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace std::chrono_literals;
using hl::diagnostics::LogRateLimiter;

// Tests that each peer gets its burst a period, that the site's own bound holds over many peers,
// and that the first line of a new period counts what the last one left out.
TEST(LogRateLimiter, BurstPerPeerAndSiteThenTheNextPeriodCountsWhatWasLeftOut) {
    LogRateLimiter limiter(2, 200ms, 5, 3);
    int written = 0;
    for (int i = 0; i < 10; ++i) {
        written += limiter.Admit(1) ? 1 : 0;
    }
    EXPECT_EQ(written, 2);
    EXPECT_TRUE(limiter.Admit(2));
    EXPECT_TRUE(limiter.Admit(3));
    EXPECT_TRUE(limiter.Admit(4));  // beyond three peers: the shared entry
    EXPECT_FALSE(limiter.Admit(5)) << "the site's five lines are spent";
    std::this_thread::sleep_for(250ms);
    const auto next = limiter.Admit(1);
    ASSERT_TRUE(next);
    EXPECT_EQ(next.suppressed, 8u);
    EXPECT_EQ(next.Note(), " (8 similar lines suppressed)");
    EXPECT_EQ(limiter.Admit(2).Note(), "");
}

}  // namespace
