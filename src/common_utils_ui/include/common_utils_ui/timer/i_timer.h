#pragma once

// A timer of the thread that made it; its callbacks run on that thread while its event loop turns.

#include <chrono>
#include <functional>

namespace vdi::common_utils_ui::timer {

class ITimer {
public:
    virtual ~ITimer() = default;
    virtual void SetInterval(std::chrono::milliseconds interval) = 0;
    virtual std::chrono::milliseconds GetInterval() const = 0;
    virtual void SetSingleShot(bool singleShot) = 0;
    virtual void Start() = 0;
    virtual void Stop() = 0;
    // Adds a callback; every added callback runs on each timeout.
    virtual void SetCallback(std::function<void()> callback) = 0;
    virtual void ResetCallback() = 0;
    virtual int GetId() const = 0;
};

}  // namespace vdi::common_utils_ui::timer
