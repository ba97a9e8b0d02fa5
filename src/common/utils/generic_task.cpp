#include <common/utils/generic_task.h>

#include <diagnostics/check.h>

#include <utility>

namespace common::utils {

GenericTask::GenericTask(std::function<void()>&& function) : m_function(std::move(function)) {
    HCA_CHECK(static_cast<bool>(m_function)) << "Task is not initialized!";
}

void GenericTask::Execute() const {
    m_function();
}

}  // namespace common::utils
