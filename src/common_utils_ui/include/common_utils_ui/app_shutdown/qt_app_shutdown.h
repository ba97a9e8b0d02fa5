#pragma once

// Ends the Qt event loop by posting QCoreApplication::quit() through a task executor, so that the
// quit happens on the Qt main thread whatever thread asks for it. Any thread may call
// StopApplication. Keeps a shared reference to the executor for its whole life.

#include <common/utils/i_task_executor.h>
#include <common_utils_ui/app_shutdown/i_app_shutdown.h>

#include <memory>

namespace vdi::common_utils_ui::app_shutdown {

class QtAppShutdown : public IAppShutdown {
public:
    // Throws hca::CheckFailedException "Ui Task executor is null" for a null executor.
    explicit QtAppShutdown(std::shared_ptr<common::utils::ITaskExecutor> taskExecutor);

    // Returns the executor's result, or 0x8000004B ("Unspecified error") after logging
    // "Failed to stop application" if posting throws.
    std::int32_t StopApplication() const override;

private:
    std::shared_ptr<common::utils::ITaskExecutor> m_taskExecutor;
};

}  // namespace vdi::common_utils_ui::app_shutdown
