#pragma once

// The application manager's liveness check. Ping never throws: a failed request ends the process.
// One thread at a time (the watchdog worker).

#include <cstdint>
#include <string_view>

namespace app_manager {

class IApplicationWatchdog {
public:
    virtual ~IApplicationWatchdog() = default;
    virtual std::int32_t Ping(std::string_view appName) noexcept = 0;
};

}  // namespace app_manager
