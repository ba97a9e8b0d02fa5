#pragma once

// ITimer over a QTimer. SetCallback adds a direct connection to timeout() each time it is called;
// ResetCallback deliberately disconnects nothing, so connected callbacks keep firing. The destructor
// deletes the QTimer later if it still exists (its parent may have destroyed it first).
// Qt main thread only.

#include <common_utils_ui/timer/i_timer.h>

#include <QPointer>
#include <QTimer>

namespace vdi::common_utils_ui::timer {

class TimerQt final : public ITimer {
public:
    explicit TimerQt(QTimer* timer);
    ~TimerQt() override;

    TimerQt(const TimerQt&) = delete;
    TimerQt& operator=(const TimerQt&) = delete;

    void SetInterval(std::chrono::milliseconds interval) override;
    std::chrono::milliseconds GetInterval() const override;
    void SetSingleShot(bool singleShot) override;
    void Start() override;
    void Stop() override;
    void SetCallback(std::function<void()> callback) override;
    void ResetCallback() override;
    int GetId() const override;

private:
    QPointer<QTimer> m_timer;
};

}  // namespace vdi::common_utils_ui::timer
