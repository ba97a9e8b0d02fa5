#pragma once

// The watchdog worker: a thread of its own that sends Ping(name) once per Notify, so that a slow
// manager never holds up the notifying (user-interface) thread. Signals are not counted: any number
// of Notify calls during a Ping leave one pending signal. The worker is the only user of the proxy.
// The constructor starts the thread after every field stands; the destructor cancels and joins, so it
// blocks while a Ping is stuck in the transport. Construct, notify and destroy on one thread.

#include <app_manager/watchdog/i_application_watchdog.h>

#include <app_manager/i_application_manager.h>
#include <app_manager/i_application_watchdog.h>
#include <common/utils/cancellation_token.h>

#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace common_utils::app_utils::watchdog {

class ApplicationWatchdog final : public IApplicationWatchdog {
public:
    // Throws hca::CheckFailedException "ApplicationWatchdog is null" for a null proxy, and
    // std::system_error when the thread can't be started.
    ApplicationWatchdog(std::string_view appName, std::shared_ptr<app_manager::IApplicationWatchdog> proxy);
    ~ApplicationWatchdog() override;

    ApplicationWatchdog(const ApplicationWatchdog&) = delete;
    ApplicationWatchdog& operator=(const ApplicationWatchdog&) = delete;

    void Notify() noexcept override;

private:
    void Worker();

    std::string m_appName;
    std::shared_ptr<app_manager::IApplicationWatchdog> m_proxy;
    common::utils::CancellationToken m_token{common::utils::ICancellationToken::ExecutionAction::Run};
    std::thread m_worker;
};

// A worker over manager->GetApplicationWatchdog(). Throws hca::CheckFailedException
// "ApplicationManager is null" or "ApplicationWatchdog is null".
std::unique_ptr<IApplicationWatchdog> CreateWatchdog(
    std::string_view appName, const std::shared_ptr<app_manager::IApplicationManager>& manager);

}  // namespace common_utils::app_utils::watchdog
