// The watchdog worker against a manager whose Ping can be held: one Ping per notification, and at
// most one pending signal however often it is notified while a Ping is slow.
#include <app_manager/watchdog/application_watchdog.h>

#include <diagnostics/check_failure_text_for_testing.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;

class HeldPings final : public app_manager::IApplicationWatchdog {
public:
    std::int32_t Ping(std::string_view appName) noexcept override {
        std::unique_lock lock(m_mutex);
        m_names.emplace_back(appName);
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_hold; });
        return 5;
    }
    void Hold(bool hold) {
        const std::lock_guard lock(m_mutex);
        m_hold = hold;
        m_changed.notify_all();
    }
    // True once `count` pings have started within `timeout`.
    bool WaitForPings(std::size_t count, std::chrono::milliseconds timeout) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, timeout, [&] { return m_names.size() >= count; });
    }
    std::vector<std::string> Names() {
        const std::lock_guard lock(m_mutex);
        return m_names;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_hold = false;
    std::vector<std::string> m_names;
};

TEST(WatchdogWorker, OnePingPerNotifyAndOnePendingSignalWhilePingIsSlow) {
    auto pings = std::make_shared<HeldPings>();
    {
        common_utils::app_utils::watchdog::ApplicationWatchdog worker("AccessArbiter", pings);
        EXPECT_FALSE(pings->WaitForPings(1, 50ms)) << "no ping before the first notification";
        pings->Hold(true);
        worker.Notify();
        ASSERT_TRUE(pings->WaitForPings(1, 5s));
        for (int i = 0; i < 10; ++i) {
            worker.Notify();  // never blocks on the slow manager
        }
        pings->Hold(false);
        ASSERT_TRUE(pings->WaitForPings(2, 5s));
        EXPECT_FALSE(pings->WaitForPings(3, 200ms)) << "signals must not pile up";
        worker.Notify();
        ASSERT_TRUE(pings->WaitForPings(3, 5s));
    }
    EXPECT_EQ(pings->Names(), (std::vector<std::string>(3, "AccessArbiter")));
}

TEST(WatchdogWorker, DestructionWhileIdleEndsTheWorkerWithoutAPing) {
    auto pings = std::make_shared<HeldPings>();
    { common_utils::app_utils::watchdog::ApplicationWatchdog worker("app", pings); }
    EXPECT_TRUE(pings->Names().empty());
}

class Manager final : public app_manager::IApplicationManager {
public:
    explicit Manager(std::shared_ptr<app_manager::IApplicationWatchdog> watchdog)
        : m_watchdog(std::move(watchdog)) {}
    std::shared_ptr<app_manager::IApplicationController> GetApplicationController() override {
        return nullptr;
    }
    std::shared_ptr<app_manager::IApplicationCommands> GetApplicationCommands() override { return nullptr; }
    std::shared_ptr<app_manager::IApplicationWatchdog> GetApplicationWatchdog() override {
        return m_watchdog;
    }

private:
    std::shared_ptr<app_manager::IApplicationWatchdog> m_watchdog;
};

TEST(WatchdogWorker, FactoryChecksTheManagerAndItsWatchdog) {
    using common_utils::app_utils::watchdog::CreateWatchdog;
    const auto message = [](const std::shared_ptr<app_manager::IApplicationManager>& manager) {
        return hca::testing::CheckFailureTextForTesting([&] { CreateWatchdog("app", manager); });
    };
    EXPECT_THAT(message(nullptr), testing::HasSubstr("ApplicationManager is null"));
    EXPECT_THAT(message(std::make_shared<Manager>(nullptr)),
                testing::HasSubstr("ApplicationWatchdog is null"));
    EXPECT_NE(CreateWatchdog("app", std::make_shared<Manager>(std::make_shared<HeldPings>())), nullptr);
}

}  // namespace
