#include <common_utils_ui/watchdog/application_watchdog.h>

#include <app_manager/watchdog/application_watchdog.h>
#include <common_utils_ui/timer/qt_timer_factory.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <diagnostics/result_code.h>

#include <chrono>
#include <utility>

namespace vdi::common_utils_ui::watchdog {

namespace {
constexpr std::chrono::milliseconds kPingPeriod{1000};
}

ApplicationWatchdog::ApplicationWatchdog(
    std::shared_ptr<timer::ITimerFactory> timerFactory,
    std::unique_ptr<common_utils::app_utils::watchdog::IApplicationWatchdog> watchdog)
    : m_timerFactory(std::move(timerFactory)), m_watchdog(std::move(watchdog)) {
    HCA_CHECK(m_timerFactory != nullptr) << "Timer factory is null";
    HCA_CHECK(m_watchdog != nullptr) << "Watchdog is null";
    m_timer = m_timerFactory->CreateTimer();
    HCA_CHECK(m_timer != nullptr) << "Timer is null";
    m_timer->SetInterval(kPingPeriod);
    m_timer->SetCallback([this] { m_watchdog->Notify(); });
    m_timer->Start();
}

ApplicationWatchdog::~ApplicationWatchdog() {
    try {
        m_timer->Stop();
        m_timer.reset();
        m_watchdog.reset();
        m_timerFactory.reset();
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "ApplicationWatchdog destruction failed: - [{}, {}]",
               hcax::ResultCodeText(code), message);
    }
}

std::shared_ptr<ApplicationWatchdog> CreateWatchdog(
    const std::shared_ptr<app_manager::IApplicationManager>& manager, const std::string_view& appName) {
    auto factory = std::make_shared<timer::QtTimerFactory>();
    auto worker = common_utils::app_utils::watchdog::CreateWatchdog(appName, manager);
    return std::make_shared<ApplicationWatchdog>(std::move(factory), std::move(worker));
}

}  // namespace vdi::common_utils_ui::watchdog
