#pragma once

// The controller as seen from inside one application: the name is known, the caller only says what
// has happened. Each operation returns the controller's result code and never throws. The order of
// calls is the caller's duty. Main thread only.

#include <cstdint>
#include <string_view>

namespace app_manager {

class IApplicationStatus {
public:
    virtual ~IApplicationStatus() = default;
    virtual std::int32_t ReadyToInitialize() noexcept = 0;
    virtual std::int32_t ReadyToShowUI() noexcept = 0;
    // StateChanged(-2): the wire has no shutdown call of its own.
    virtual std::int32_t ReadyToShutdown() noexcept = 0;
    virtual std::int32_t FinishWithInternalError(std::string_view error,
                                                 std::string_view details) noexcept = 0;
    virtual std::int32_t StateChanged(long state) noexcept = 0;
};

}  // namespace app_manager
