#include <common/utils/generic_task.h>
#include <common/utils/qt_ui_task_executor.h>

#include <diagnostics/check.h>
#include <diagnostics/process_exception.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace {

using common::utils::GenericTask;
using common::utils::ITask;
using common::utils::QtUiTaskExecutor;

// Records where it ran and when it died.
struct TaskProbe {
    std::atomic<int> executions{0};
    std::atomic<bool> destroyed{false};
    std::atomic<QThread*> executedOn{nullptr};
};

class ProbeTask : public ITask {
public:
    explicit ProbeTask(TaskProbe& probe) : m_probe(probe) {}
    ~ProbeTask() override { m_probe.destroyed = true; }
    void Execute() const override {
        m_probe.executedOn = QThread::currentThread();
        ++m_probe.executions;
    }

private:
    TaskProbe& m_probe;
};

int g_argc = 1;
char g_arg0[] = "qt_ui_task_executor_test";
char* g_argv[] = {g_arg0, nullptr};

TEST(GenericTask, ExecuteCallsTheFunctionEachTime) {
    int calls = 0;
    GenericTask task([&calls] { ++calls; });
    task.Execute();
    task.Execute();
    EXPECT_EQ(calls, 2);
}

TEST(GenericTask, EmptyFunctionIsRejectedAtConstruction) {
    try {
        GenericTask task{std::function<void()>{}};
        FAIL() << "an empty function must throw";
    } catch (const hca::CheckFailedException&) {
        const auto [code, message] = fdn::utils::ProcessException();
        EXPECT_NE(message.find("Task is not initialized!"), std::string::npos) << message;
    }
}

TEST(QtUiTaskExecutor, NullTaskIsAnInvalidArgument) {
    QtUiTaskExecutor executor;
    EXPECT_EQ(executor.PostTask(nullptr), static_cast<std::int32_t>(0x80000046u));
}

TEST(QtUiTaskExecutor, TaskPostedBeforeTheApplicationExistsRunsInlineOnTheCallingThread) {
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    QtUiTaskExecutor executor;
    TaskProbe probe;
    QThread* worker = nullptr;
    std::int32_t result = -1;
    std::thread thread([&] {
        worker = QThread::currentThread();
        std::unique_ptr<ITask> task = std::make_unique<ProbeTask>(probe);
        result = executor.PostTask(std::move(task));
        // The task stays with the caller's pointer when it ran inline.
        EXPECT_NE(task, nullptr);
    });
    thread.join();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(probe.executions, 1);
    EXPECT_EQ(probe.executedOn, worker);
}

TEST(QtUiTaskExecutor, TaskPostedOnTheMainThreadHasRunWhenPostTaskReturns) {
    QCoreApplication app(g_argc, g_argv);
    QtUiTaskExecutor executor;
    TaskProbe probe;
    EXPECT_EQ(executor.PostTask(std::make_unique<ProbeTask>(probe)), 0);
    EXPECT_EQ(probe.executions, 1) << "no turn of the event loop may be needed";
    EXPECT_EQ(probe.executedOn, app.thread());
}

TEST(QtUiTaskExecutor, TaskPostedFromAnotherThreadRunsOnTheMainThreadOnceItsLoopSpins) {
    QCoreApplication app(g_argc, g_argv);
    QtUiTaskExecutor executor;
    TaskProbe probe;
    std::int32_t result = -1;
    std::thread poster([&] { result = executor.PostTask(std::make_unique<ProbeTask>(probe)); });
    poster.join();

    EXPECT_EQ(result, 0);
    EXPECT_EQ(probe.executions, 0) << "the main thread has not spun its loop yet";
    EXPECT_FALSE(probe.destroyed);

    QCoreApplication::processEvents();
    EXPECT_EQ(probe.executions, 1);
    EXPECT_EQ(probe.executedOn, app.thread());
    EXPECT_TRUE(probe.destroyed) << "the queued call owns the task and drops it after running it";
}

TEST(QtUiTaskExecutor, QueuedTaskThatNeverRunsIsDestroyedWithTheApplication) {
    TaskProbe probe;
    {
        QCoreApplication app(g_argc, g_argv);
        QtUiTaskExecutor executor;
        std::thread poster([&] { executor.PostTask(std::make_unique<ProbeTask>(probe)); });
        poster.join();
    }
    EXPECT_EQ(probe.executions, 0);
    EXPECT_TRUE(probe.destroyed);
}

}  // namespace
