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

template <typename Call, typename... EntryArgs>
std::int32_t ApplicationController::Invoke(const char* operation, std::string_view failedName, Call&& call,
                                           std::string_view entryFormat,
                                           const EntryArgs&... entryArgs) noexcept {
    HL_LOG_FOR(hos::logger::LogLevel::Debug, operation, entryFormat, entryArgs...);
    int result = hca::result_code::kUnspecifiedError;
    try {
        std::forward<Call>(call)(result);
        return result;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG_FOR(hos::logger::LogLevel::Critical, operation, "Failed to call {}, {} with result: {}",
                   failedName, message, hcax::ResultCodeText(code));
        return code;
    }
}

std::int32_t ApplicationController::StartApplication(std::string_view appName) noexcept {
    return Invoke(
        __func__, "StartApplication", [&](int& result) { m_proxy->StartApplication(Bytes(appName), result); },
        "Proxy: ApplicationController::StartApplication {}", appName);
}

std::int32_t ApplicationController::ReadyToInitialize(std::string_view appName) noexcept {
    return Invoke(
        __func__, "ReadyToInitialize",
        [&](int& result) { m_proxy->ReadyToInitialize(Bytes(appName), result); },
        "Proxy: ApplicationController::ReadyToInitialize {}", appName);
}

std::int32_t ApplicationController::ReadyToShowUI(std::string_view appName) noexcept {
    // The failure line names another operation; it is kept as it stands.
    return Invoke(
        __func__, "FinishWithInternalError",
        [&](int& result) { m_proxy->ReadyToShowUI(Bytes(appName), result); },
        "Proxy: ApplicationController::ReadyToShowUI {}", appName);
}

std::int32_t ApplicationController::FinishWithInternalError(std::string_view appName, std::string_view error,
                                                            std::string_view details) noexcept {
    return Invoke(
        __func__, "FinishWithInternalError",
        [&](int& result) {
            m_proxy->FinishWithInternalError(Bytes(appName), Bytes(error), Bytes(details), result);
        },
        "Proxy: ApplicationController::FinishWithInternalError, appName: {}, error: {} - {}", appName, error,
        details);
}

std::int32_t ApplicationController::StateChanged(std::string_view appName, long state) noexcept {
    return Invoke(
        __func__, "StateChanged", [&](int& result) { m_proxy->StateChanged(Bytes(appName), state, result); },
        "Proxy: ApplicationController::StateChanged, appName: {}, state: {}", appName, state);
}

}  // namespace app_manager::proxy
