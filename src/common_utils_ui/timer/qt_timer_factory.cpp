#include <common_utils_ui/timer/qt_timer_factory.h>

#include <common_utils_ui/timer/timer_qt.h>

#include <QCoreApplication>

namespace vdi::common_utils_ui::timer {

std::unique_ptr<ITimer> QtTimerFactory::CreateTimer() {
    auto* timer = new QTimer(QCoreApplication::instance());
    // A coarse timer may fire up to 5 % early; the watchdog's pings must stay at most one a second.
    timer->setTimerType(Qt::PreciseTimer);
    return std::make_unique<TimerQt>(timer);
}

}  // namespace vdi::common_utils_ui::timer
