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

class ServiceRegistryTest : public ::testing::Test {
protected:
    testing::ScopedRuntimeDirectory m_directory;
    std::shared_ptr<IServiceRegistry> m_registry = CreateServiceRegistry();
};

TEST_F(ServiceRegistryTest, PublishedEntriesAreFoundListedByTypeReplacedAndUnpublished) {
    ASSERT_EQ(m_registry->Publish({"b.type", "server-a", "endpoint_id", 0}), 0);
    ASSERT_EQ(m_registry->Publish({"a.type", "one", "e", 0}), 0);
    ASSERT_EQ(m_registry->Publish({"a.type", "two", "e", 0}), 0);
    const auto found = m_registry->Find("b.type");
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->server, "server-a");
    EXPECT_EQ(found->endpoint, "endpoint_id");
    EXPECT_EQ(found->pid, ::getpid());
    const auto entries = m_registry->List();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].type, "a.type");
    EXPECT_EQ(entries[0].server, "two");
    EXPECT_EQ(entries[1].type, "b.type");
    EXPECT_EQ(m_registry->Unpublish("a.type"), 0);
    EXPECT_EQ(m_registry->Unpublish("a.type"), NK_ENOTFOUND);
    EXPECT_FALSE(m_registry->Find("a.type").has_value());
}

TEST_F(ServiceRegistryTest, InvalidNamesAndMalformedEntryFilesAreRefused) {
    for (const auto& entry : std::vector<RegistryEntry>{{"a/b", "s", "e", 0},
                                                        {"t", "", "e", 0},
                                                        {".hidden", "s", "e", 0},
                                                        {std::string(201, 'x'), "s", "e", 0}}) {
        EXPECT_EQ(m_registry->Publish(entry), NK_EINVAL) << entry.type;
    }
    EXPECT_TRUE(m_registry->List().empty());
    EXPECT_FALSE(m_registry->Find("../etc/passwd").has_value());
    ASSERT_EQ(m_registry->Publish({"good", "s", "e", 0}), 0);
    std::ofstream(m_directory.Path() + "/registry/broken") << "garbage without fields\n";
    EXPECT_FALSE(m_registry->Find("broken").has_value());
    EXPECT_EQ(m_registry->List().size(), 1u);
}

TEST_F(ServiceRegistryTest, ConcurrentPublishersNeverLeaveAHalfWrittenEntry) {
    ASSERT_EQ(m_registry->Publish({"shared", "server-0", "endpoint-0", 0}), 0);
    std::atomic<int> failures{0};
    auto publisher = [&](int id) {
        const std::string suffix = std::to_string(id);
        for (int i = 0; i < 100; ++i) {
            failures += m_registry->Publish({"shared", "server-" + suffix, "endpoint-" + suffix, 0}) != 0;
        }
    };
    std::thread first(publisher, 1);
    std::thread second(publisher, 2);
    int badReads = 0;
    for (int i = 0; i < 200; ++i) {
        const auto found = m_registry->Find("shared");
        badReads += !found || found->server.substr(7) != found->endpoint.substr(9);
    }
    first.join();
    second.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(badReads, 0);
}

}  // namespace
}  // namespace hos::platform
