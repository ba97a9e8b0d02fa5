#include <common_utils_ui/timer/timer_qt.h>

#include <utility>

namespace vdi::common_utils_ui::timer {

TimerQt::TimerQt(QTimer* timer) : m_timer(timer) {}

TimerQt::~TimerQt() {
    if (m_timer) {
        m_timer->deleteLater();
    }
}

void TimerQt::SetInterval(std::chrono::milliseconds interval) {
    m_timer->setInterval(static_cast<int>(interval.count()));
}

std::chrono::milliseconds TimerQt::GetInterval() const {
    return std::chrono::milliseconds(m_timer->interval());
}

void TimerQt::SetSingleShot(bool singleShot) {
    m_timer->setSingleShot(singleShot);
}

void TimerQt::Start() {
    m_timer->start();
}

void TimerQt::Stop() {
    m_timer->stop();
}

void TimerQt::SetCallback(std::function<void()> callback) {
    QObject::connect(m_timer.data(), &QTimer::timeout, m_timer.data(), std::move(callback),
                     Qt::DirectConnection);
}

void TimerQt::ResetCallback() {
    // Deliberately no disconnect: a connected callback stays connected.
}

int TimerQt::GetId() const {
    return m_timer->timerId();
}

}  // namespace vdi::common_utils_ui::timer
