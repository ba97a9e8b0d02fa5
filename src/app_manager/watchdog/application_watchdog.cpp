#include <app_manager/watchdog/application_watchdog.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <diagnostics/result_code.h>

#include <utility>

namespace common_utils::app_utils::watchdog {

using Action = common::utils::ICancellationToken::ExecutionAction;

ApplicationWatchdog::ApplicationWatchdog(std::string_view appName,
                                         std::shared_ptr<app_manager::IApplicationWatchdog> proxy)
    : m_appName(appName), m_proxy(std::move(proxy)) {
    HCA_CHECK(m_proxy != nullptr) << "ApplicationWatchdog is null";
    m_worker = std::thread(&ApplicationWatchdog::Worker, this);
}

ApplicationWatchdog::~ApplicationWatchdog() {
    try {
        m_token.Cancel();
        if (m_worker.joinable()) {
            m_worker.join();
        }
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "ApplicationWatchdog destruction failed: - [{}, {}]",
               hcax::ResultCodeText(code), message);
    }
}

void ApplicationWatchdog::Notify() noexcept {
    try {
        m_token.Resume();
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "ApplicationWatchdog::Notify failed: - [{}, {}]",
               hcax::ResultCodeText(code), message);
    }
}

void ApplicationWatchdog::Worker() {
    if (m_token.IsCanceled()) {
        return;
    }
    for (;;) {
        m_token.Wait();
        if (m_token.IsCanceled()) {
            return;
        }
        // The manager's rc is of no interest here; a failed request ends the process inside Ping.
        static_cast<void>(m_proxy->Ping(m_appName));
        if (m_token.IsCanceled()) {
            return;
        }
    }
}

std::unique_ptr<IApplicationWatchdog> CreateWatchdog(
    std::string_view appName, const std::shared_ptr<app_manager::IApplicationManager>& manager) {
    HCA_CHECK(manager != nullptr) << "ApplicationManager is null";
    auto proxy = manager->GetApplicationWatchdog();
    HCA_CHECK(proxy != nullptr) << "ApplicationWatchdog is null";
    return std::make_unique<ApplicationWatchdog>(appName, std::move(proxy));
}

}  // namespace common_utils::app_utils::watchdog
