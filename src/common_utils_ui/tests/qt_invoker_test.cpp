#include <common_utils_ui/qt_callable_guard.h>
#include <common_utils_ui/qt_invoker.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace {

using vdi::common_utils_ui::QtCallableGuard;
using vdi::common_utils_ui::QtInvoker;

// Records on which thread and with what value it was called; the counters live outside the object
// so that they can be read after it is gone.
struct CallLog {
    std::atomic<int> calls{0};
    std::atomic<int> lastValue{0};
    std::atomic<QThread*> thread{nullptr};
};

class Target : public QObject, public common::utils::ICallable {
public:
    explicit Target(CallLog& log) : m_log(log) {}

    std::unique_ptr<common::utils::ICallableGuard> GetGuardView() const override {
        return std::make_unique<QtCallableGuard>(this);
    }

    void Touch() noexcept {
        m_log.thread = QThread::currentThread();
        ++m_log.calls;
    }

    void Store(int value) {
        m_log.thread = QThread::currentThread();
        m_log.lastValue = value;
        ++m_log.calls;
    }

private:
    CallLog& m_log;
};

// A callable whose guard reports the object dead from the start.
class DeadGuard : public common::utils::ICallableGuard {
public:
    bool IsNull() const override { return true; }
};

class AlreadyDead : public common::utils::ICallable {
public:
    std::unique_ptr<common::utils::ICallableGuard> GetGuardView() const override {
        return std::make_unique<DeadGuard>();
    }
    void Touch() { ++calls; }
    int calls = 0;
};

void RunFromWorker(const std::function<void()>& work) {
    std::thread worker(work);
    worker.join();
}

TEST(QtInvoker, NullObjectIsRejected) {
    EXPECT_ANY_THROW(QtInvoker<Target>(nullptr));
}

TEST(QtInvoker, CallsAtOnceWithoutApplication) {
    CallLog log;
    Target target(log);
    QtInvoker<Target>(&target).Invoke(&Target::Store, 7);
    EXPECT_EQ(log.calls, 1);
    EXPECT_EQ(log.lastValue, 7);
}

TEST(QtInvoker, CallsAtOnceOnMainThread) {
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    CallLog log;
    Target target(log);
    QtInvoker<Target>(&target).Invoke(&Target::Touch);
    EXPECT_EQ(log.calls, 1);
    EXPECT_EQ(log.thread.load(), QThread::currentThread());
}

TEST(QtInvoker, CallFromWorkerReturnsFirstAndRunsOnMainThreadLater) {
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    CallLog log;
    Target target(log);
    int callsWhenInvokeReturned = -1;
    RunFromWorker([&] {
        QtInvoker<Target>(&target).Invoke(&Target::Store, 42);
        callsWhenInvokeReturned = log.calls;
    });
    EXPECT_EQ(callsWhenInvokeReturned, 0);
    EXPECT_EQ(log.calls, 0);

    QCoreApplication::processEvents(QEventLoop::AllEvents);
    EXPECT_EQ(log.calls, 1);
    EXPECT_EQ(log.lastValue, 42);
    EXPECT_EQ(log.thread.load(), app.thread());
}

TEST(QtInvoker, CallToObjectDestroyedBeforeItRunsIsDropped) {
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    CallLog log;
    auto target = std::make_unique<Target>(log);
    RunFromWorker([&] { QtInvoker<Target>(target.get()).Invoke(&Target::Touch); });
    target.reset();
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    EXPECT_EQ(log.calls, 0);
}

TEST(QtInvoker, CallWhoseGuardReportsDeathIsDropped) {
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    AlreadyDead target;
    RunFromWorker([&] { QtInvoker<AlreadyDead>(&target).Invoke(&AlreadyDead::Touch); });
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    EXPECT_EQ(target.calls, 0);
}

TEST(QtInvoker, PostedCallThatNeverRunsIsDroppedWithTheQueue) {
    CallLog log;
    Target target(log);
    {
        int argc = 0;
        QCoreApplication app(argc, nullptr);
        RunFromWorker([&] { QtInvoker<Target>(&target).Invoke(&Target::Touch); });
    }
    EXPECT_EQ(log.calls, 0);
}

TEST(QtCallableGuard, TurnsNullWhenTheObjectDies) {
    auto object = std::make_unique<QObject>();
    QtCallableGuard guard(object.get());
    EXPECT_FALSE(guard.IsNull());
    object.reset();
    EXPECT_TRUE(guard.IsNull());
}

TEST(QtCallableGuard, WithoutObjectIsNull) {
    EXPECT_TRUE(QtCallableGuard(nullptr).IsNull());
}

}  // namespace
