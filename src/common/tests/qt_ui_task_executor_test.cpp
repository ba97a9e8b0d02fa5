#include <common/utils/generic_task.h>
#include <common/utils/qt_ui_task_executor.h>

#include <diagnostics/check.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <memory>
#include <thread>

namespace {

using common::utils::GenericTask;
using common::utils::QtUiTaskExecutor;

// Records where it ran; `destroyed` outlives the task.
struct TaskProbe {
    std::atomic<int> executions{0};
    std::atomic<bool> destroyed{false};
    std::atomic<QThread*> executedOn{nullptr};
};

class ProbeTask : public common::utils::ITask {
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

// Posts a fresh probe task from a thread of its own; returns PostTask's result.
std::int32_t PostFromWorker(QtUiTaskExecutor& executor, TaskProbe& probe, QThread** worker = nullptr) {
    std::int32_t result = -1;
    std::thread thread([&] {
        if (worker != nullptr) {
            *worker = QThread::currentThread();
        }
        result = executor.PostTask(std::make_unique<ProbeTask>(probe));
    });
    thread.join();
    return result;
}

int g_argc = 0;

TEST(QtUiTaskExecutor, NullTaskIsAnInvalidArgumentAndAnEmptyFunctionNoTask) {
    EXPECT_EQ(QtUiTaskExecutor().PostTask(nullptr), static_cast<std::int32_t>(0x80000046u));
    EXPECT_THROW(GenericTask{std::function<void()>{}}, hca::CheckFailedException);
}

TEST(QtUiTaskExecutor, TaskPostedBeforeTheApplicationExistsRunsInlineOnTheCallingThread) {
    QtUiTaskExecutor executor;
    TaskProbe probe;
    QThread* worker = nullptr;
    EXPECT_EQ(PostFromWorker(executor, probe, &worker), 0);
    EXPECT_EQ(probe.executions, 1);
    EXPECT_EQ(probe.executedOn, worker);
}

TEST(QtUiTaskExecutor, TaskPostedOnTheMainThreadHasRunWhenPostTaskReturns) {
    QCoreApplication app(g_argc, nullptr);
    QtUiTaskExecutor executor;
    TaskProbe probe;
    EXPECT_EQ(executor.PostTask(std::make_unique<ProbeTask>(probe)), 0);
    EXPECT_EQ(probe.executions, 1) << "no turn of the event loop may be needed";
    EXPECT_EQ(probe.executedOn, app.thread());
}

TEST(QtUiTaskExecutor, TaskPostedFromAnotherThreadRunsOnTheMainThreadOnceItsLoopSpins) {
    QCoreApplication app(g_argc, nullptr);
    QtUiTaskExecutor executor;
    TaskProbe probe;
    EXPECT_EQ(PostFromWorker(executor, probe), 0);
    EXPECT_EQ(probe.executions, 0) << "the main thread has not spun its loop yet";
    EXPECT_FALSE(probe.destroyed);

    QCoreApplication::processEvents();
    EXPECT_EQ(probe.executions, 1);
    EXPECT_EQ(probe.executedOn, app.thread());
    EXPECT_TRUE(probe.destroyed) << "the queued call owns the task and drops it after running it";
}

}  // namespace
