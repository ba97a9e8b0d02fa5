#include <common_utils_ui/app_shutdown/qt_app_shutdown.h>

#include <common/utils/generic_task.h>
#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <diagnostics/result_code.h>

#include <QCoreApplication>

#include <utility>

namespace vdi::common_utils_ui::app_shutdown {

QtAppShutdown::QtAppShutdown(std::shared_ptr<common::utils::ITaskExecutor> taskExecutor)
    : m_taskExecutor(std::move(taskExecutor)) {
    HCA_CHECK(m_taskExecutor != nullptr) << "Ui Task executor is null";
}

std::int32_t QtAppShutdown::StopApplication() const {
    try {
        auto task = std::make_unique<common::utils::GenericTask>([] { QCoreApplication::quit(); });
        return m_taskExecutor->PostTask(std::move(task));
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        // The text has no placeholder: code and message are handed over but don't show.
        HL_LOG(hos::logger::LogLevel::Error, "Failed to stop application", code, message);
        return hca::result_code::kUnspecifiedError;
    }
}

}  // namespace vdi::common_utils_ui::app_shutdown
