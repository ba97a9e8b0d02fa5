#pragma once

// Something that sends the application manager one Ping each time it is notified. Notify never
// blocks on the manager and never throws.

namespace common_utils::app_utils::watchdog {

class IApplicationWatchdog {
public:
    virtual ~IApplicationWatchdog() = default;
    virtual void Notify() noexcept = 0;
};

}  // namespace common_utils::app_utils::watchdog
