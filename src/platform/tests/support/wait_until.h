// Polls a condition until it holds or a time limit passes: the tests' one way to wait for what
// another thread or process does.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace hos::platform::testing {

// True as soon as `condition` holds; false when it still does not after `timeout`. Polls every
// `every`.
inline bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout,
                      std::chrono::milliseconds every = std::chrono::milliseconds(10)) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return condition();
        }
        std::this_thread::sleep_for(every);
    }
    return true;
}

}  // namespace hos::platform::testing
