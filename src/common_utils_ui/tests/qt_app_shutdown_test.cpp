#include <common/utils/qt_ui_task_executor.h>
#include <common_utils_ui/app_shutdown/qt_app_shutdown.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <thread>

namespace {

using vdi::common_utils_ui::app_shutdown::QtAppShutdown;

TEST(QtAppShutdown, StopFromAnotherThreadEndsTheEventLoop) {
    EXPECT_ANY_THROW(QtAppShutdown(nullptr));
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    QtAppShutdown shutdown(std::make_shared<common::utils::QtUiTaskExecutor>());
    std::atomic<std::int32_t> result{-1};
    std::thread stopper;
    QTimer::singleShot(0, &app, [&] { stopper = std::thread([&] { result = shutdown.StopApplication(); }); });
    // Guards against a hang if the stop never arrives; the exit code tells which one ended the loop.
    QTimer::singleShot(30000, &app, [] { QCoreApplication::exit(99); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    stopper.join();
    EXPECT_EQ(result, 0);
}

}  // namespace
