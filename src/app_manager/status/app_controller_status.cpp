#include <app_manager/app_controller_status.h>

#include <diagnostics/check.h>

#include <utility>

namespace app_manager {

AppControllerStatus::AppControllerStatus(std::string_view appName,
                                         std::shared_ptr<IApplicationController> controller)
    : m_appName(appName), m_controller(std::move(controller)) {
    HCA_CHECK(!m_appName.empty()) << "Application name is empty";
    HCA_CHECK(m_controller != nullptr) << "Application controller is nullptr";
}

std::int32_t AppControllerStatus::ReadyToInitialize() noexcept {
    return m_controller->ReadyToInitialize(m_appName);
}

std::int32_t AppControllerStatus::ReadyToShowUI() noexcept {
    return m_controller->ReadyToShowUI(m_appName);
}

std::int32_t AppControllerStatus::ReadyToShutdown() noexcept {
    return m_controller->StateChanged(m_appName, kReadyToShutdownState);
}

std::int32_t AppControllerStatus::FinishWithInternalError(std::string_view error,
                                                          std::string_view details) noexcept {
    return m_controller->FinishWithInternalError(m_appName, error, details);
}

std::int32_t AppControllerStatus::StateChanged(long state) noexcept {
    return m_controller->StateChanged(m_appName, state);
}

std::unique_ptr<IApplicationStatus> CreateApplicationStatus(
    std::string_view appName, std::shared_ptr<IApplicationController> controller) {
    return std::make_unique<AppControllerStatus>(appName, std::move(controller));
}

std::shared_ptr<IApplicationStatus> CreateApplicationStatusSPtr(
    std::string_view appName, std::shared_ptr<IApplicationController> controller) {
    return std::make_shared<AppControllerStatus>(appName, std::move(controller));
}

}  // namespace app_manager
