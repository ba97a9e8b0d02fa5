#pragma once

// Drives the watchdog worker from the Qt main thread: a repeating 1000 ms timer whose every tick
// notifies the worker, so a hung event loop stops the pings. The timer starts in the constructor and
// fires once the event loop turns. The destructor stops the timer and destroys the worker, which joins
// its thread. Construct and destroy on the Qt main thread.

#include <app_manager/watchdog/i_application_watchdog.h>
#include <common_utils_ui/timer/i_timer_factory.h>

#include <app_manager/i_application_manager.h>

#include <memory>
#include <string_view>

namespace vdi::common_utils_ui::watchdog {

class ApplicationWatchdog {
public:
    // Throws hca::CheckFailedException "Timer factory is null", "Watchdog is null" or "Timer is null".
    ApplicationWatchdog(std::shared_ptr<timer::ITimerFactory> timerFactory,
                        std::unique_ptr<common_utils::app_utils::watchdog::IApplicationWatchdog> watchdog);
    ~ApplicationWatchdog();

    ApplicationWatchdog(const ApplicationWatchdog&) = delete;
    ApplicationWatchdog& operator=(const ApplicationWatchdog&) = delete;

private:
    std::shared_ptr<timer::ITimerFactory> m_timerFactory;
    std::unique_ptr<common_utils::app_utils::watchdog::IApplicationWatchdog> m_watchdog;
    std::unique_ptr<timer::ITimer> m_timer;
};

// A Qt timer over the worker of manager->GetApplicationWatchdog(). Note the argument order, which
// differs from the worker's factory.
std::shared_ptr<ApplicationWatchdog> CreateWatchdog(
    const std::shared_ptr<app_manager::IApplicationManager>& manager, const std::string_view& appName);

}  // namespace vdi::common_utils_ui::watchdog
