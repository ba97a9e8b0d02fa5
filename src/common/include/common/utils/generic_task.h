#pragma once

// A task that runs a function given at construction.

#include <common/utils/i_task.h>

#include <functional>

namespace common::utils {

class GenericTask : public ITask {
public:
    // Takes the function over. Throws hca::CheckFailedException "Task is not initialized!" if it is
    // empty, so Execute always has something to call.
    explicit GenericTask(std::function<void()>&& function);

    void Execute() const override;

private:
    std::function<void()> m_function;
};

}  // namespace common::utils
