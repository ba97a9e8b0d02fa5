#pragma once

// Lets one thread tell a worker to run, hold or stop, and lets the worker wait for such a change.

#include <chrono>
#include <cstdint>

namespace common::utils {

class ICancellationToken {
public:
    enum class ExecutionAction : std::int32_t {
        Run = 0,     // go on working
        Pause = 1,   // hold
        Cancel = 2,  // stop for good
    };

    virtual ~ICancellationToken() = default;

    // Stores the current action without waiting; returns 0.
    virtual std::int32_t GetExecutionAction(ExecutionAction& action) const = 0;
    // Waits up to `duration` for a change to be signalled, then stores the current action; returns
    // 0 if a change was signalled, 1 if the wait timed out.
    virtual std::int32_t GetExecutionAction(ExecutionAction& action,
                                            std::chrono::milliseconds duration) const = 0;
    // Store Pause or Run and signal the change; both return 0.
    virtual std::int32_t Pause() = 0;
    virtual std::int32_t Resume() = 0;
    virtual bool IsPaused() const = 0;
    virtual bool IsCanceled() const = 0;
};

}  // namespace common::utils
