// The component tree and the names that the handshake resolves, and the other process-level calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include <platform/platform.h>

#include "task/task.h"

namespace hos::platform {
namespace {

class TaskTest : public ::testing::Test {
protected:
    void TearDown() override { Task::Self().ResetForTesting(); }
};

TEST_F(TaskTest, NamesResolveToTheirEndpointNumberAndTheFirstEndpointWins) {
    const HosEndpointDesc endpoints[] = {
        {0, "waylandClient", "waylandClient", "hl.WaylandClient"},
        {1, "accessArbiter.accessArbiter", "accessArbiter", "hl.access_arbiter.AccessArbiter"},
        {2, "second.accessArbiter", "accessArbiter", "hl.other.Type"},
    };
    const HosComponentTree tree{"hl.vdi.AccessArbiter", endpoints, 3, nullptr, 0};
    ASSERT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), &tree), 0);
    Task& task = Task::Self();
    EXPECT_EQ(task.Resolve("accessArbiter.accessArbiter"), 1);
    EXPECT_EQ(task.Resolve("accessArbiter"), 1);
    EXPECT_EQ(task.Resolve("hl.access_arbiter.AccessArbiter"), 1);
    EXPECT_EQ(task.Resolve("hl.access_arbiter.AccessArbiter.accessArbiter"), 1);
    EXPECT_EQ(task.Resolve("hl.other.Type"), 2);
    EXPECT_EQ(task.Resolve("hl.access_arbiter.AccessArbiter.waylandClient"), NK_ENOENDPOINT);
    EXPECT_EQ(task.Resolve("access_arbiter.accessArbiter"), NK_ENOENDPOINT);
    EXPECT_EQ(task.Resolve(""), NK_ENOENDPOINT);
    EXPECT_EQ(task.TypeName(), "hl.vdi.AccessArbiter");
}

TEST_F(TaskTest, TreeIsCopiedSoTheCallersDataNeedNotLive) {
    {
        std::string name = "svc.svc";
        const HosEndpointDesc endpoints[] = {{4, name.c_str(), "svc", "hl.Svc"}};
        const HosComponentTree tree{"hl.T", endpoints, 1, nullptr, 0};
        ASSERT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), &tree), 0);
        std::fill(name.begin(), name.end(), 'x');
    }
    EXPECT_EQ(Task::Self().Resolve("svc.svc"), 4);
}

TEST_F(TaskTest, BadTreesAreRefusedAndKeepThePreviousTree) {
    const HosEndpointDesc good[] = {{1, "a.a", "a", "hl.A"}};
    const HosComponentTree goodTree{"hl.T", good, 1, nullptr, 0};
    ASSERT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), &goodTree), 0);

    const HosEndpointDesc duplicate[] = {{1, "b.b", "b", "hl.B"}, {1, "c.c", "c", "hl.C"}};
    const HosComponentTree duplicateTree{"hl.T", duplicate, 2, nullptr, 0};
    EXPECT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), &duplicateTree), NK_EINVAL);
    const HosEndpointDesc missing[] = {{1, nullptr, "b", "hl.B"}};
    const HosComponentTree missingTree{"hl.T", missing, 1, nullptr, 0};
    EXPECT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), &missingTree), NK_EINVAL);
    const HosEndpointDesc tooLarge[] = {{0xFFFF, "b.b", "b", "hl.B"}};
    const HosComponentTree tooLargeTree{"hl.T", tooLarge, 1, nullptr, 0};
    EXPECT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), &tooLargeTree), NK_EINVAL);
    EXPECT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), nullptr), NK_EINVAL);
    EXPECT_EQ(HosTaskSetComponentTree(nullptr, &goodTree), NK_EINVAL);

    EXPECT_EQ(Task::Self().Resolve("a"), 1);
    EXPECT_EQ(Task::Self().Resolve("b"), NK_ENOENDPOINT);
}

TEST_F(TaskTest, ConnectToServiceNeedsATreeAndTheTaskItself) {
    HosTask* self = HosTaskGetSelf();
    EXPECT_EQ(HosTaskGetSelf(), self);
    EXPECT_EQ(HosTaskConnectToService(self, self, "accessArbiter_id"), NK_ENOENDPOINT);
    const HosEndpointDesc endpoints[] = {{1, "a.a", "a", "hl.A"}};
    const HosComponentTree tree{"hl.T", endpoints, 1, nullptr, 0};
    ASSERT_EQ(HosTaskSetComponentTree(self, &tree), 0);
    EXPECT_EQ(HosTaskConnectToService(self, self, "accessArbiter_id"), 0);
    EXPECT_EQ(HosTaskConnectToService(self, self, "bad name"), NK_EINVAL);
    EXPECT_EQ(HosTaskConnectToService(self, nullptr, "accessArbiter_id"), NK_EINVAL);
}

TEST(RandomTest, DrawsFillTheBufferAndDiffer) {
    unsigned char first[32] = {};
    unsigned char second[32] = {};
    ASSERT_EQ(HosRandomGenerate(first, sizeof(first)), 0);
    ASSERT_EQ(HosRandomGenerate(second, sizeof(second)), 0);
    EXPECT_NE(std::memcmp(first, second, sizeof(first)), 0);
    EXPECT_EQ(HosRandomGenerate(nullptr, 4), NK_EINVAL);
    EXPECT_EQ(HosRandomGenerate(nullptr, 0), 0);
}

TEST(ResultTextTest, KnownCodesHaveTheirTextAndOthersAFallback) {
    EXPECT_STREQ(NkResultText(NK_ENOTFOUND), "Not found");
    EXPECT_STREQ(NkResultText(NK_TRANSPORT_TIMEOUT), "Transport timeout");
    EXPECT_STREQ(NkResultText(0x12345), "Unknown platform result");
}

}  // namespace
}  // namespace hos::platform
