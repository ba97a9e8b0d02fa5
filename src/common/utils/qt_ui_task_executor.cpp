#include <common/utils/qt_ui_task_executor.h>

#include <diagnostics/result_code.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <utility>

namespace common::utils {

std::int32_t QtUiTaskExecutor::PostTask(std::unique_ptr<ITask>&& task) {
    if (!task) {
        return hca::result_code::kInvalidArgument;
    }

    QCoreApplication* application = QCoreApplication::instance();
    if (application == nullptr || QThread::currentThread() == application->thread()) {
        task->Execute();
        return hca::result_code::kNoError;
    }

    QMetaObject::invokeMethod(
        application, [queued = std::move(task)]() { queued->Execute(); }, Qt::QueuedConnection);
    return hca::result_code::kNoError;
}

}  // namespace common::utils
