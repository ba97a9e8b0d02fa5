// A counting semaphore: Release adds one and wakes one waiter, Wait takes one.
// Thread: safe from any thread. Held by shared_ptr by whoever waits; others keep weak_ptrs.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace hos::rtl {

class Semaphore {
public:
    void Release() {
        std::lock_guard lock(m_mutex);
        ++m_count;
        m_condition.notify_one();
    }

    // Takes one count, waiting up to `timeout` for it; false if none came.
    bool Wait(std::chrono::milliseconds timeout) {
        std::unique_lock lock(m_mutex);
        if (!m_condition.wait_for(lock, timeout, [this] { return m_count > 0; })) {
            return false;
        }
        --m_count;
        return true;
    }

private:
    unsigned int m_count = 0;
    std::mutex m_mutex;
    std::condition_variable m_condition;
};

}  // namespace hos::rtl
