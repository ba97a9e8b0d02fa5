// The service registry in a private runtime directory.
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <thread>

#include <platform/i_service_registry.h>
#include <platform/nk_result.h>

#include "support/scoped_runtime_directory.h"

namespace hos::platform {
namespace {

using testing::ScopedRuntimeDirectory;

TEST(ServiceRegistryTest, PublishedEntryIsFoundWithServerEndpointAndPid) {
    ScopedRuntimeDirectory directory;
    const auto registry = CreateServiceRegistry();
    ASSERT_EQ(registry->Publish({"hl.test.Type.name", "server-a", "endpoint_id", 0}), 0);
    const auto found = registry->Find("hl.test.Type.name");
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->server, "server-a");
    EXPECT_EQ(found->endpoint, "endpoint_id");
    EXPECT_EQ(found->pid, ::getpid());
}

TEST(ServiceRegistryTest, PublishingAgainReplacesTheEntry) {
    ScopedRuntimeDirectory directory;
    const auto registry = CreateServiceRegistry();
    ASSERT_EQ(registry->Publish({"t", "one", "e", 0}), 0);
    ASSERT_EQ(registry->Publish({"t", "two", "e", 0}), 0);
    EXPECT_EQ(registry->Find("t")->server, "two");
    EXPECT_EQ(registry->List().size(), 1u);
}

TEST(ServiceRegistryTest, LookupOfAnUnpublishedTypeAnswersNotFoundAtOnce) {
    ScopedRuntimeDirectory directory;
    const auto registry = CreateServiceRegistry();
    EXPECT_FALSE(registry->Find("hl.nothing").has_value());
    EXPECT_FALSE(registry->Find("../etc/passwd").has_value());
    EXPECT_TRUE(registry->List().empty());
}

TEST(ServiceRegistryTest, ListIsOrderedByTypeAndUnpublishRemoves) {
    ScopedRuntimeDirectory directory;
    const auto registry = CreateServiceRegistry();
    ASSERT_EQ(registry->Publish({"b.type", "s", "e", 0}), 0);
    ASSERT_EQ(registry->Publish({"a.type", "s", "e", 0}), 0);
    const auto entries = registry->List();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].type, "a.type");
    EXPECT_EQ(entries[1].type, "b.type");
    EXPECT_EQ(registry->Unpublish("a.type"), 0);
    EXPECT_EQ(registry->Unpublish("a.type"), NK_ENOTFOUND);
    EXPECT_EQ(registry->List().size(), 1u);
}

TEST(ServiceRegistryTest, InvalidNamesAreRefused) {
    ScopedRuntimeDirectory directory;
    const auto registry = CreateServiceRegistry();
    EXPECT_EQ(registry->Publish({"a/b", "s", "e", 0}), NK_EINVAL);
    EXPECT_EQ(registry->Publish({"t", "", "e", 0}), NK_EINVAL);
    EXPECT_EQ(registry->Publish({".hidden", "s", "e", 0}), NK_EINVAL);
    EXPECT_EQ(registry->Publish({std::string(201, 'x'), "s", "e", 0}), NK_EINVAL);
    EXPECT_TRUE(registry->List().empty());
}

TEST(ServiceRegistryTest, ConcurrentPublishersNeverLeaveAHalfWrittenEntry) {
    ScopedRuntimeDirectory directory;
    const auto registry = CreateServiceRegistry();
    ASSERT_EQ(registry->Publish({"shared", "server-0", "endpoint-0", 0}), 0);
    std::atomic<int> failures{0};
    auto publisher = [&](int id) {
        const std::string suffix = std::to_string(id);
        for (int i = 0; i < 100; ++i) {
            if (registry->Publish({"shared", "server-" + suffix, "endpoint-" + suffix, 0}) != 0) {
                ++failures;
            }
        }
    };
    std::thread first(publisher, 1);
    std::thread second(publisher, 2);
    int badReads = 0;
    for (int i = 0; i < 200; ++i) {
        const auto found = registry->Find("shared");
        if (!found || found->server.substr(7) != found->endpoint.substr(9)) {
            ++badReads;
        }
    }
    first.join();
    second.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(badReads, 0);
    EXPECT_EQ(registry->List().size(), 1u);
}

TEST(ServiceRegistryTest, MalformedEntryFileIsIgnored) {
    ScopedRuntimeDirectory directory;
    const auto registry = CreateServiceRegistry();
    ASSERT_EQ(registry->Publish({"good", "s", "e", 0}), 0);
    std::ofstream(directory.Path() + "/registry/broken") << "garbage without fields\n";
    EXPECT_FALSE(registry->Find("broken").has_value());
    EXPECT_EQ(registry->List().size(), 1u);
}

}  // namespace
}  // namespace hos::platform
