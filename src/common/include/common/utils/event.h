#pragma once

// A signal that threads can wait for, with an auto-reset or a manual-reset mode.
//
// Set and the waits may be called from any thread. An auto-reset event clears itself at the end of
// every finished wait (also one that timed out) and wakes one waiter per Set; it is meant for a
// single waiter. A manual-reset event stays signalled and wakes all waiters. Not copyable.

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace common::utils {

class Event {
public:
    Event(bool autoReset, bool signaled);

    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    void Set();

    // Waits without limit until the event is signalled.
    void Wait();

    // Waits until the event is signalled or `duration` has passed on the steady clock; returns
    // whether it was signalled.
    bool Wait(std::chrono::milliseconds duration);

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_autoReset;
    bool m_signaled;  // guarded by m_mutex
};

}  // namespace common::utils
