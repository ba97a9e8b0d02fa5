#pragma once

// An application's reports of its progress to the application manager, the name in every call.
// Each operation returns a result code (0 success) and never throws. Main thread only.

#include <cstdint>
#include <string_view>

namespace app_manager {

class IApplicationController {
public:
    virtual ~IApplicationController() = default;
    virtual std::int32_t StartApplication(std::string_view appName) noexcept = 0;
    virtual std::int32_t ReadyToInitialize(std::string_view appName) noexcept = 0;
    virtual std::int32_t ReadyToShowUI(std::string_view appName) noexcept = 0;
    virtual std::int32_t FinishWithInternalError(std::string_view appName, std::string_view error,
                                                 std::string_view details) noexcept = 0;
    virtual std::int32_t StateChanged(std::string_view appName, long state) noexcept = 0;
};

}  // namespace app_manager
