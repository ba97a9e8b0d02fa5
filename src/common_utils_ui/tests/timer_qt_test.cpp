// TimerQt over a real QTimer: callbacks add up and ResetCallback leaves them connected.
#include <common_utils_ui/timer/qt_timer_factory.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

TEST(TimerQt, EverySetCallbackRunsOnEachTimeoutAndResetCallbackDisconnectsNothing) {
    int argc = 1;
    char name[] = "timer_qt_test";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    vdi::common_utils_ui::timer::QtTimerFactory factory;
    auto timer = factory.CreateTimer();
    ASSERT_NE(timer, nullptr);
    int first = 0;
    int second = 0;
    timer->SetInterval(5ms);
    EXPECT_EQ(timer->GetInterval(), 5ms);
    timer->SetCallback([&] { ++first; });
    timer->SetCallback([&] { ++second; });
    timer->ResetCallback();
    timer->Start();
    EXPECT_NE(timer->GetId(), -1);
    QElapsedTimer elapsed;
    elapsed.start();
    while (second < 3 && elapsed.elapsed() < 5000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    timer->Stop();
    EXPECT_EQ(timer->GetId(), -1);
    EXPECT_GE(second, 3);
    EXPECT_EQ(first, second);
}

}  // namespace
