#pragma once

// IApplicationStatus over a controller: every call goes to the controller with the stored name first.
// ReadyToShutdown is StateChanged(name, -2). No state of its own; main thread only.

#include <app_manager/i_application_controller.h>
#include <app_manager/i_application_status.h>

#include <memory>
#include <string>
#include <string_view>

namespace app_manager {

class AppControllerStatus final : public IApplicationStatus {
public:
    static constexpr long kReadyToShutdownState = -2;

    // Throws hca::CheckFailedException "Application name is empty" or
    // "Application controller is nullptr".
    AppControllerStatus(std::string_view appName, std::shared_ptr<IApplicationController> controller);

    std::int32_t ReadyToInitialize() noexcept override;
    std::int32_t ReadyToShowUI() noexcept override;
    std::int32_t ReadyToShutdown() noexcept override;
    std::int32_t FinishWithInternalError(std::string_view error, std::string_view details) noexcept override;
    std::int32_t StateChanged(long state) noexcept override;

private:
    std::string m_appName;
    std::shared_ptr<IApplicationController> m_controller;
};

std::unique_ptr<IApplicationStatus> CreateApplicationStatus(
    std::string_view appName, std::shared_ptr<IApplicationController> controller);
std::shared_ptr<IApplicationStatus> CreateApplicationStatusSPtr(
    std::string_view appName, std::shared_ptr<IApplicationController> controller);

}  // namespace app_manager
