#pragma once

#include <common/utils/i_task.h>

#include <cstdint>
#include <memory>

namespace common::utils {

// Runs tasks on a thread of the implementation's choosing. PostTask may be called from any thread.
class ITaskExecutor {
public:
    virtual ~ITaskExecutor() = default;

    // Takes the task over (or runs it at once, leaving it with the caller), and returns a result
    // code: 0 on success, 0x80000046 ("Invalid argument") for a null task.
    virtual std::int32_t PostTask(std::unique_ptr<ITask>&& task) = 0;
};

}  // namespace common::utils
