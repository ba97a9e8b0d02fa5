// A point in time by which a wait must end, made from a timeout in milliseconds where
// NK_TIMEOUT_INFINITE means never. Value type; any thread.
#pragma once

#include <chrono>
#include <cstdint>

namespace hos::platform {

class Deadline {
public:
    static Deadline FromTimeoutMs(uint64_t timeoutMs);
    static Deadline Never();

    bool IsInfinite() const { return m_infinite; }
    bool HasPassed() const;
    // Milliseconds left as poll(2) takes them: -1 for never, 0 when passed, rounded up otherwise.
    int RemainingPollMs() const;
    std::chrono::steady_clock::time_point TimePoint() const { return m_at; }

private:
    bool m_infinite = true;
    std::chrono::steady_clock::time_point m_at{};
};

}  // namespace hos::platform
