// The Qt side of the watchdog: pings follow the event loop's timer ticks, so a blocked main thread
// stops them while the worker stays idle.
#include <common_utils_ui/watchdog/application_watchdog.h>

#include <diagnostics/check_failed_exception.h>

#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using namespace std::chrono_literals;

class CountingPings final : public app_manager::IApplicationWatchdog {
public:
    std::int32_t Ping(std::string_view appName) noexcept override {
        if (appName == "AccessArbiter") {
            ++count;
        }
        return 0;
    }
    std::atomic<int> count{0};
};

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

void RunLoopFor(std::chrono::milliseconds duration) {
    QTimer::singleShot(static_cast<int>(duration.count()), QCoreApplication::instance(),
                       &QCoreApplication::quit);
    QCoreApplication::exec();
}

TEST(QtWatchdog, PingsFollowTheEventLoopAndStopWhileItIsBlocked) {
    int argc = 1;
    char name[] = "qt_watchdog_test";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    auto pings = std::make_shared<CountingPings>();
    auto watchdog =
        vdi::common_utils_ui::watchdog::CreateWatchdog(std::make_shared<Manager>(pings), "AccessArbiter");
    ASSERT_NE(watchdog, nullptr);

    std::this_thread::sleep_for(1300ms);  // the loop hasn't begun: no tick, no ping
    EXPECT_EQ(pings->count.load(), 0);

    RunLoopFor(2500ms);  // one overdue tick at once, then one a second
    std::this_thread::sleep_for(500ms);  // the worker sends the last notified ping on its own thread
    const int whileRunning = pings->count.load();
    EXPECT_GE(whileRunning, 2);
    EXPECT_LE(whileRunning, 4);

    std::this_thread::sleep_for(2500ms);  // a hung main thread: no ticks, so no pings
    EXPECT_EQ(pings->count.load(), whileRunning);
    watchdog.reset();  // stops the timer and joins the worker
}

TEST(QtWatchdog, FactoryAndConstructorCheckTheirParts) {
    EXPECT_THROW(vdi::common_utils_ui::watchdog::CreateWatchdog(nullptr, "app"), hca::CheckFailedException);
    EXPECT_THROW(vdi::common_utils_ui::watchdog::ApplicationWatchdog(nullptr, nullptr),
                 hca::CheckFailedException);
}

}  // namespace
