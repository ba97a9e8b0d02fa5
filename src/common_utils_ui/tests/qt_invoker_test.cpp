#include <common_utils_ui/qt_callable_guard.h>
#include <common_utils_ui/qt_invoker.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <memory>
#include <thread>

namespace {

using vdi::common_utils_ui::QtCallableGuard;
using vdi::common_utils_ui::QtInvoker;

// Records its calls in counters outside itself, so that they can be read after it is gone.
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
    void Store(int value) {
        m_log.thread = QThread::currentThread();
        m_log.lastValue = value;
        ++m_log.calls;
    }

private:
    CallLog& m_log;
};

void InvokeFromWorker(Target* target, int value) {
    std::thread worker([target, value] { QtInvoker<Target>(target).Invoke(&Target::Store, value); });
    worker.join();
}

TEST(QtInvoker, CallsAtOnceWithoutApplicationOrOnTheMainThread) {
    EXPECT_ANY_THROW(QtInvoker<Target>(nullptr));
    CallLog log;
    Target target(log);
    QtInvoker<Target>(&target).Invoke(&Target::Store, 7);
    EXPECT_EQ(log.lastValue, 7);

    int argc = 0;
    QCoreApplication app(argc, nullptr);
    QtInvoker<Target>(&target).Invoke(&Target::Store, 8);
    EXPECT_EQ(log.lastValue, 8);
    EXPECT_EQ(log.thread.load(), app.thread());
}

TEST(QtInvoker, CallFromWorkerRunsOnTheMainThreadLaterUnlessTheObjectDiedBefore) {
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    CallLog log;
    CallLog deadLog;
    Target target(log);
    auto dying = std::make_unique<Target>(deadLog);
    InvokeFromWorker(&target, 42);
    InvokeFromWorker(dying.get(), 1);
    EXPECT_EQ(log.calls, 0) << "the worker's call returns before the target runs";
    dying.reset();

    QCoreApplication::processEvents();
    EXPECT_EQ(log.calls, 1);
    EXPECT_EQ(log.lastValue, 42);
    EXPECT_EQ(log.thread.load(), app.thread());
    EXPECT_EQ(deadLog.calls, 0);
}

}  // namespace
