// The dispatcher and lookup libraries: lookups that find nothing, the connection manager's stop,
// worker and log, and the facade's start and teardown order. Publishing a service and finding it from
// another process is what every end-to-end test of the decision service does first.
#include <gtest/gtest.h>

#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <platform/hos_entity/i_component_dispatcher.h>
#include <platform/ipc_dispatcher/create_ipc_connection_manager.h>
#include <platform/ipc_dispatcher/dynamic_ipc_facade.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>
#include <platform/platform.h>

#include "support/scoped_runtime_directory.h"
#include "support/test_call.h"

namespace hos::platform {
namespace {

using namespace std::chrono_literals;
using hos::ipc::ConnectionManager;
using shared::ipc_utils::FindConnectionTargetForType;

TEST(IpcDispatcherTest, LookupOfAnUnpublishedOrInvalidTypeAnswersNotFound) {
    testing::ScopedRuntimeDirectory directory;
    for (const char* type : {"hl.test.Nobody.nobody", "", "bad/name", static_cast<const char*>(nullptr)}) {
        const auto target = FindConnectionTargetForType(type, NK_TIMEOUT_INFINITE);
        EXPECT_FALSE(target.found) << (type == nullptr ? "(null)" : type);
        EXPECT_STREQ(target.server, "");
    }
}

class ConnectionManagerTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_server = ServiceLocatorRegister("manager_test", 0, 0, &m_id);
        ASSERT_NE(m_server, NK_INVALID_HANDLE);
        m_config.handles[1] = m_server;
        m_config.log =
            std::make_shared<ConnectionManager::LogCallback>([this](std::string_view text, bool isError) {
                std::lock_guard lock(m_mutex);
                m_lines.emplace_back(std::string(text) + (isError ? " [error]" : ""));
            });
    }

    void TearDown() override {
        KnHandleClose(m_server);
        ServiceLocatorUnregister(m_id);
    }

    std::vector<std::string> Lines() {
        std::lock_guard lock(m_mutex);
        return m_lines;
    }

    testing::ScopedRuntimeDirectory m_directory;
    unsigned int m_id = 0;
    unsigned int m_server = NK_INVALID_HANDLE;
    ConnectionManager::Config m_config;
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

TEST_F(ConnectionManagerTest, StopClosesTheChannelsReleasesWaitersAndReportsTrueOnlyOnce) {
    const unsigned int client = ServiceLocatorConnect("manager_test");
    ASSERT_NE(client, NK_INVALID_HANDLE);
    auto manager = shared::ipc_dispatcher::CreateIpcConnectionManager(m_config);
    const auto waiter = std::make_shared<rtl::Semaphore>();
    ASSERT_TRUE(manager->AddWaiterForTesting(1, waiter));
    EXPECT_FALSE(manager->AddWaiterForTesting(2, waiter));
    bool released = false;
    std::thread waiting([&] { released = waiter->Wait(20s); });

    EXPECT_TRUE(manager->Stop(nullptr));
    waiting.join();
    EXPECT_TRUE(released);
    EXPECT_FALSE(manager->Stop(nullptr));
    EXPECT_EQ(KnHandleClose(m_server), NK_EBADHANDLE) << "Stop left the server channel open";
    NkHosTransport transport;
    NkHosTransport_Init(&transport, client, 0, 0);
    NkHosSetTransportTimeouts(&transport, NK_TIMEOUT_INFINITE, 20000);
    EXPECT_EQ(testing::CallThrough(transport, testing::TestRequest{}).rc, NK_ECLOSED);
    KnHandleClose(client);
}

TEST_F(ConnectionManagerTest, WorkerLogsAChannelClosedFromOutsideOnceAndTellsTheCallback) {
    m_config.periodMs = 10;
    unsigned int closedKey = 0;
    m_config.onChannelClosed = std::make_shared<ConnectionManager::ChannelCallback>(
        [&](unsigned int key, unsigned int) { closedKey = key; });
    auto manager = shared::ipc_dispatcher::CreateIpcConnectionManager(m_config);
    ASSERT_EQ(KnHandleClose(m_server), 0);
    for (int i = 0; i < 2000 && Lines().empty(); ++i) {
        std::this_thread::sleep_for(10ms);
    }
    std::this_thread::sleep_for(50ms);  // room for a wrong second report
    ASSERT_TRUE(manager->Stop(nullptr));
    EXPECT_EQ(Lines(),
              std::vector<std::string>{"ConnectionManager: channel 1 (handle " + std::to_string(m_server) +
                                       ") was closed from outside [error]"});
    EXPECT_EQ(closedKey, 1u);
}

TEST_F(ConnectionManagerTest, LogPrefixesTheTextAndLetsNoFailureOfTheFunctionOut) {
    ConnectionManager manager(m_config);
    manager.Log("hello", false);
    manager.Log("broken", true);
    EXPECT_EQ(Lines(),
              (std::vector<std::string>{"ConnectionManager: hello", "ConnectionManager: broken [error]"}));

    const std::vector<std::optional<std::shared_ptr<ConnectionManager::LogCallback>>> badFunctions = {
        std::make_shared<ConnectionManager::LogCallback>(),
        std::make_shared<ConnectionManager::LogCallback>(
            [](std::string_view, bool) { throw std::runtime_error("log sink failed"); }),
        std::make_shared<ConnectionManager::LogCallback>([](std::string_view, bool) { throw 42; }),
        std::shared_ptr<ConnectionManager::LogCallback>(),
        std::nullopt,
    };
    for (const auto& function : badFunctions) {
        ConnectionManager::Config config;
        config.log = function;
        const ConnectionManager quiet(config);
        EXPECT_NO_THROW(quiet.Log("text", true));
    }
}

class RecordingDispatcher final : public entity::IComponentDispatcher {
public:
    RecordingDispatcher(std::vector<std::string>& events,
                        std::weak_ptr<ConnectionManager::LogCallback> managerPart)
        : m_events(events), m_managerPart(std::move(managerPart)) {}
    ~RecordingDispatcher() override {
        m_events.push_back(m_managerPart.expired() ? "dispatcher destroyed after the manager"
                                                   : "dispatcher destroyed before the manager");
    }
    std::int32_t Start() override {
        m_events.push_back("start");
        return 0;
    }
    std::int32_t Stop() override {
        m_events.push_back("stop");
        return 0;
    }

private:
    std::vector<std::string>& m_events;
    std::weak_ptr<ConnectionManager::LogCallback> m_managerPart;
};

TEST(DynamicIpcFacadeTest, StartsTheDispatcherOnceAndDestroysTheManagerBeforeTheDispatcher) {
    std::vector<std::string> events;
    std::weak_ptr<ConnectionManager::LogCallback> managerPart;
    {
        ConnectionManager::Config config;
        auto log = std::make_shared<ConnectionManager::LogCallback>([](std::string_view, bool) {});
        managerPart = log;
        config.log = std::move(log);
        auto manager = shared::ipc_dispatcher::CreateIpcConnectionManager(std::move(config));
        // From here on the manager holds the only reference to its log function.
        shared::ipc_dispatcher::DynamicIpcFacade facade(
            std::make_unique<RecordingDispatcher>(events, managerPart), std::move(manager));
        EXPECT_EQ(events, std::vector<std::string>{"start"});
    }
    EXPECT_EQ(events, (std::vector<std::string>{"start", "dispatcher destroyed after the manager"}));
}

}  // namespace
}  // namespace hos::platform
