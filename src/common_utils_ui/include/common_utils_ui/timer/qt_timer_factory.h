#pragma once

// Makes TimerQt objects whose QTimer is a child of the QCoreApplication instance. Qt main thread.

#include <common_utils_ui/timer/i_timer_factory.h>

namespace vdi::common_utils_ui::timer {

class QtTimerFactory final : public ITimerFactory {
public:
    std::unique_ptr<ITimer> CreateTimer() override;
};

}  // namespace vdi::common_utils_ui::timer
