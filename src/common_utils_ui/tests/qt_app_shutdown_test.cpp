#include <common/utils/qt_ui_task_executor.h>
#include <common_utils_ui/app_shutdown/qt_app_shutdown.h>

#include <diagnostics/check.h>
#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/process_exception.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

using common::utils::ITask;
using common::utils::ITaskExecutor;
using vdi::common_utils_ui::app_shutdown::QtAppShutdown;
using namespace std::chrono_literals;

class MockTaskExecutor : public ITaskExecutor {
public:
    MOCK_METHOD(std::int32_t, PostTask, (std::unique_ptr<ITask> && task), (override));
};

int g_argc = 1;
char g_arg0[] = "qt_app_shutdown_test";
char* g_argv[] = {g_arg0, nullptr};

TEST(QtAppShutdown, NullExecutorIsRejected) {
    try {
        QtAppShutdown shutdown(nullptr);
        FAIL() << "a null executor must throw";
    } catch (const hca::CheckFailedException&) {
        const auto [code, message] = fdn::utils::ProcessException();
        EXPECT_THAT(message, testing::HasSubstr("Ui Task executor is null"));
    }
}

TEST(QtAppShutdown, StopFromAnotherThreadEndsTheEventLoop) {
    QCoreApplication app(g_argc, g_argv);
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

TEST(QtAppShutdown, StopOnTheMainThreadEndsTheRunningLoop) {
    QCoreApplication app(g_argc, g_argv);
    QtAppShutdown shutdown(std::make_shared<common::utils::QtUiTaskExecutor>());
    std::int32_t result = -1;
    QTimer::singleShot(0, &app, [&] { result = shutdown.StopApplication(); });
    QTimer::singleShot(30000, &app, [] { QCoreApplication::exit(99); });

    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_EQ(result, 0);
}

TEST(QtAppShutdown, PassesTheExecutorResultOnAndPostsATaskThatQuits) {
    auto executor = std::make_shared<MockTaskExecutor>();
    std::unique_ptr<ITask> posted;
    EXPECT_CALL(*executor, PostTask(testing::_)).WillOnce([&posted](std::unique_ptr<ITask>&& task) {
        posted = std::move(task);
        return static_cast<std::int32_t>(0x80000221u);
    });
    QtAppShutdown shutdown(executor);
    EXPECT_EQ(shutdown.StopApplication(), static_cast<std::int32_t>(0x80000221u));
    ASSERT_NE(posted, nullptr);

    QCoreApplication app(g_argc, g_argv);
    QTimer::singleShot(0, &app, [&posted] { posted->Execute(); });
    QTimer::singleShot(30000, &app, [] { QCoreApplication::exit(99); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "the posted task must quit the application";
}

TEST(QtAppShutdown, ThrowingExecutorGivesUnspecifiedErrorAndOneLogLine) {
    hos::logger::LogCaptureForTesting capture;
    auto executor = std::make_shared<MockTaskExecutor>();
    EXPECT_CALL(*executor, PostTask(testing::_)).WillOnce([](std::unique_ptr<ITask>&&) -> std::int32_t {
        throw std::runtime_error("executor is gone");
    });
    QtAppShutdown shutdown(executor);
    EXPECT_EQ(shutdown.StopApplication(), static_cast<std::int32_t>(0x8000004Bu));

    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, hos::logger::LogLevel::Error);
    EXPECT_EQ(records[0].message, "Failed to stop application");
}

}  // namespace
