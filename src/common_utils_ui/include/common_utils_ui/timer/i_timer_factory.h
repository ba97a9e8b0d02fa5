#pragma once

#include <common_utils_ui/timer/i_timer.h>

#include <memory>

namespace vdi::common_utils_ui::timer {

class ITimerFactory {
public:
    virtual ~ITimerFactory() = default;
    virtual std::unique_ptr<ITimer> CreateTimer() = 0;
};

}  // namespace vdi::common_utils_ui::timer
