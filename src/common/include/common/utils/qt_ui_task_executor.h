#pragma once

// Runs tasks on the Qt main thread (the thread of the QCoreApplication instance).
//
// PostTask may be called from any thread. On the main thread, or while no QCoreApplication exists,
// the task runs at once on the calling thread and has finished when PostTask returns. From any
// other thread it is queued to the application object and runs when the main event loop reaches it;
// if the loop never does, the task is destroyed with the queue without running.

#include <common/utils/i_task_executor.h>

namespace common::utils {

class QtUiTaskExecutor : public ITaskExecutor {
public:
    std::int32_t PostTask(std::unique_ptr<ITask>&& task) override;
};

}  // namespace common::utils
