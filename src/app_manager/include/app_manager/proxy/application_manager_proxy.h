#pragma once

// The three clients of the application manager under one object. The pointers never change after
// construction; the getters copy them and take no lock. Members die in reverse order: watchdog,
// commands (stops the notice thread), controller.

#include <app_manager/i_application_manager.h>

#include <memory>
#include <string_view>

namespace app_manager::proxy {

class ApplicationManagerProxy final : public IApplicationManager {
public:
    // Throws hca::CheckFailedException "IApplicationControllerPtr is nullptr!",
    // "IApplicationCommandsPtr is nullptr!" or "IApplicationWatchdogPtr is nullptr!".
    ApplicationManagerProxy(std::shared_ptr<IApplicationController> controller,
                            std::shared_ptr<IApplicationCommands> commands,
                            std::shared_ptr<IApplicationWatchdog> watchdog);

    std::shared_ptr<IApplicationController> GetApplicationController() override;
    std::shared_ptr<IApplicationCommands> GetApplicationCommands() override;
    std::shared_ptr<IApplicationWatchdog> GetApplicationWatchdog() override;

private:
    std::shared_ptr<IApplicationController> m_controller;
    std::shared_ptr<IApplicationCommands> m_commands;
    std::shared_ptr<IApplicationWatchdog> m_watchdog;
};

// Finds the manager ("hl.app_manager.ApplicationManager.applicationManager") and connects the
// controller, commands and watchdog channels in that order, each without a time limit. Null on every
// failure, after a critical log line; never throws. Main thread; starts the notice thread.
std::shared_ptr<IApplicationManager> CreateApplicationManager(std::string_view appName);

}  // namespace app_manager::proxy
