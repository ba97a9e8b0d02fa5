// The commands client's notice thread against the test manager's update handle: update events call
// the callbacks, the closed event ends the thread with its critical line, destruction wakes and joins.
#include "support/manager_fixture.h"

#include <app_manager/create_application_manager.h>
#include <app_manager/proxy/application_commands.h>

#include <diagnostics/check_failed_exception.h>
#include <diagnostics/result_code.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace {

using namespace std::chrono_literals;

constexpr const char* kClosedLine =
    "ApplicationCommands: Update handle unexpectedly closed. Server malfunction?";

class NoticeThread : public app_manager::testing::ManagerFixture {
protected:
    void SetUp() override {
        StartManager();
        m_client = app_manager::CreateApplicationManager("AccessArbiter");
        ASSERT_NE(m_client, nullptr);
        m_subscriber = std::dynamic_pointer_cast<app_manager::ICommandChangedSubscriber>(
            m_client->GetApplicationCommands());
        ASSERT_NE(m_subscriber, nullptr);
        ASSERT_TRUE(LogEventually("ApplicationCommands::NoticeProxy::Start"));
    }

    bool CountReaches(const std::atomic<int>& count, int value) {
        return hos::platform::testing::WaitUntil([&] { return count.load() >= value; }, 5s, 2ms);
    }

    std::shared_ptr<app_manager::IApplicationManager> m_client;
    std::shared_ptr<app_manager::ICommandChangedSubscriber> m_subscriber;
};

TEST_F(NoticeThread, EachUpdateEventCallsEveryRegisteredCallback) {
    std::atomic<int> first{0};
    std::atomic<int> second{0};
    EXPECT_EQ(m_subscriber->RegisterCallback([&] { ++first; }), 1U);
    const app_manager::CallbackId secondId = m_subscriber->RegisterCallback([&] { ++second; });
    EXPECT_EQ(secondId, 2U);

    m_manager->Send("update");
    ASSERT_TRUE(m_manager->WaitForLine("update 0", 5s));
    ASSERT_TRUE(CountReaches(first, 1));
    ASSERT_TRUE(CountReaches(second, 1));

    m_subscriber->UnregisterCallback(secondId);
    m_manager->Send("update");
    ASSERT_TRUE(CountReaches(first, 2));
    EXPECT_EQ(second.load(), 1);
    // Ids aren't reused.
    EXPECT_EQ(m_subscriber->RegisterCallback([] {}), 3U);
    EXPECT_FALSE(m_log.Contains(kClosedLine));
}

TEST_F(NoticeThread, ClosedHandleEndsTheThreadWithTheCriticalLineAndTheClientLivesOn) {
    std::atomic<int> calls{0};
    m_subscriber->RegisterCallback([&] { ++calls; });
    m_manager->Send("close");
    ASSERT_TRUE(LogEventually(kClosedLine));
    EXPECT_EQ(calls.load(), 0);
    EXPECT_EQ(m_log.Count(hos::logger::LogLevel::Critical), 1U);
    // The rest of the client still works, and destruction joins the ended thread.
    EXPECT_EQ(m_client->GetApplicationController()->ReadyToShowUI("AccessArbiter"), 0);
    m_subscriber.reset();
    m_client.reset();
}

TEST_F(NoticeThread, DestructionWakesTheBlockedWaitAndEndsSilently) {
    m_subscriber.reset();
    m_client.reset();  // DropAndWake, then join: returning at all is the point.
    EXPECT_FALSE(m_log.Contains(kClosedLine));
    EXPECT_TRUE(m_log.Contains("KnNoticeDropAndWake result: 0x0"));
}

TEST_F(NoticeThread, CallbackFailureIsLoggedAndUnknownIdIsWarnedAbout) {
    m_subscriber->RegisterCallback([] { throw std::runtime_error("boom"); });
    m_manager->Send("update");
    ASSERT_TRUE(LogEventually("Failed to notify callback, "));
    EXPECT_TRUE(m_log.Contains("boom with result: " + std::to_string(hca::result_code::kUnspecifiedError)));

    m_subscriber->UnregisterCallback(99);
    EXPECT_TRUE(m_log.Contains("Trying to unregister callback with not existent id: 99"));
    EXPECT_THROW(m_subscriber->RegisterCallback(nullptr), hca::CheckFailedException);
}

}  // namespace
