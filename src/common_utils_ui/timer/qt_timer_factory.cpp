#include <common_utils_ui/timer/qt_timer_factory.h>

#include <common_utils_ui/timer/timer_qt.h>

#include <QCoreApplication>

namespace vdi::common_utils_ui::timer {

std::unique_ptr<ITimer> QtTimerFactory::CreateTimer() {
    return std::make_unique<TimerQt>(new QTimer(QCoreApplication::instance()));
}

}  // namespace vdi::common_utils_ui::timer
