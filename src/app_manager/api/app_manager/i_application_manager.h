#pragma once

// The three clients of the application manager under one object. The getters copy pointers that
// never change after construction, so any thread may call them.

#include <app_manager/i_application_commands.h>
#include <app_manager/i_application_controller.h>
#include <app_manager/i_application_watchdog.h>

#include <memory>

namespace app_manager {

class IApplicationManager {
public:
    virtual ~IApplicationManager() = default;
    virtual std::shared_ptr<IApplicationController> GetApplicationController() = 0;
    virtual std::shared_ptr<IApplicationCommands> GetApplicationCommands() = 0;
    virtual std::shared_ptr<IApplicationWatchdog> GetApplicationWatchdog() = 0;
};

}  // namespace app_manager
