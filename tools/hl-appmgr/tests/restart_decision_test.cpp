// Restart decisions: policy per way of ending, back-off doubling, and the start limit window.
#include "core/restart_decision.h"

#include <gtest/gtest.h>

namespace hl_appmgr {
namespace {

Unit MakeUnit(RestartPolicy policy, int limit = 5, std::int64_t window = 60000) {
    Unit unit;
    unit.program = "p";
    unit.restart = policy;
    unit.startLimit = limit;
    unit.startLimitIntervalMs = window;
    return unit;
}

TEST(RestartDecision, PolicyTable) {
    const struct {
        RestartPolicy policy;
        EndKind kind;
        bool restart;
    } cases[] = {
        {RestartPolicy::No, EndKind::Failure, false},
        {RestartPolicy::No, EndKind::Hung, false},
        {RestartPolicy::No, EndKind::FailedStart, false},
        {RestartPolicy::No, EndKind::Clean, false},
        {RestartPolicy::OnFailure, EndKind::Failure, true},
        {RestartPolicy::OnFailure, EndKind::Hung, true},
        {RestartPolicy::OnFailure, EndKind::FailedStart, true},
        {RestartPolicy::OnFailure, EndKind::Clean, false},
        {RestartPolicy::Always, EndKind::Failure, true},
        {RestartPolicy::Always, EndKind::Clean, false},
    };
    for (const auto& c : cases) {
        RestartTracker tracker(MakeUnit(c.policy));
        tracker.NoteStart(0);
        const auto decision = tracker.Decide(c.kind, 100);
        EXPECT_EQ(decision.restart, c.restart)
            << static_cast<int>(c.policy) << "/" << static_cast<int>(c.kind);
        EXPECT_FALSE(decision.startLimitHit);
    }
}

TEST(RestartDecision, BackOffDoublesThenTheStartLimitStops) {
    RestartTracker tracker(MakeUnit(RestartPolicy::OnFailure, 4));
    std::int64_t now = 0;
    const std::int64_t expected[] = {500, 1000, 2000};
    for (const std::int64_t delay : expected) {
        tracker.NoteStart(now);
        const auto decision = tracker.Decide(EndKind::Failure, now + 10);
        ASSERT_TRUE(decision.restart);
        EXPECT_EQ(decision.delayMs, delay);
        now += 10 + delay;
    }
    tracker.NoteStart(now);
    const auto last = tracker.Decide(EndKind::Failure, now + 10);
    EXPECT_FALSE(last.restart);
    EXPECT_TRUE(last.startLimitHit);
}

TEST(RestartDecision, StartsOutsideTheWindowNoLongerCountAndDelayIsCapped) {
    RestartTracker tracker(MakeUnit(RestartPolicy::Always, 2, 1000));
    tracker.NoteStart(0);
    tracker.NoteStart(10);
    EXPECT_TRUE(tracker.Decide(EndKind::Failure, 20).startLimitHit);
    const auto later = tracker.Decide(EndKind::Failure, 1010);
    EXPECT_TRUE(later.restart);
    EXPECT_EQ(later.delayMs, 500);

    RestartTracker many(MakeUnit(RestartPolicy::Always, 1000, 1000000));
    for (int i = 0; i < 20; ++i) {
        many.NoteStart(i);
    }
    EXPECT_EQ(many.Decide(EndKind::Hung, 30).delayMs, RestartTracker::kMaxDelayMs);
}

}  // namespace
}  // namespace hl_appmgr
