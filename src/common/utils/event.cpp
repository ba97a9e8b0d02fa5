#include <common/utils/event.h>

namespace common::utils {

namespace {

// Clears an auto-reset event however the wait ends, an exception from the wait included.
class AutoResetScope {
public:
    AutoResetScope(bool autoReset, bool& signaled) : m_autoReset(autoReset), m_signaled(signaled) {}
    ~AutoResetScope() {
        if (m_autoReset) {
            m_signaled = false;
        }
    }
    AutoResetScope(const AutoResetScope&) = delete;
    AutoResetScope& operator=(const AutoResetScope&) = delete;

private:
    bool m_autoReset;
    bool& m_signaled;
};

}  // namespace

Event::Event(bool autoReset, bool signaled) : m_autoReset(autoReset), m_signaled(signaled) {}

void Event::Set() {
    std::lock_guard lock(m_mutex);
    m_signaled = true;
    if (m_autoReset) {
        m_condition.notify_one();
    } else {
        m_condition.notify_all();
    }
}

void Event::Wait() {
    std::unique_lock lock(m_mutex);
    AutoResetScope reset(m_autoReset, m_signaled);
    m_condition.wait(lock, [this] { return m_signaled; });
}

bool Event::Wait(std::chrono::milliseconds duration) {
    std::unique_lock lock(m_mutex);
    AutoResetScope reset(m_autoReset, m_signaled);
    if (m_signaled) {
        return true;
    }
    const auto deadline = std::chrono::steady_clock::now() + duration;
    return m_condition.wait_until(lock, deadline, [this] { return m_signaled; });
}

}  // namespace common::utils
