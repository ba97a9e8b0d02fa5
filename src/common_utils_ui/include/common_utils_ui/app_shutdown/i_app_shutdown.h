#pragma once

#include <cstdint>

namespace vdi::common_utils_ui::app_shutdown {

// Asks the running application to end its event loop. Any thread may call it.
class IAppShutdown {
public:
    virtual ~IAppShutdown() = default;

    // Returns 0 once the request is made, or a negative result code.
    virtual std::int32_t StopApplication() const = 0;
};

}  // namespace vdi::common_utils_ui::app_shutdown
