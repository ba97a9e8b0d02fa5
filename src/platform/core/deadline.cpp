#include "core/deadline.h"

#include <climits>

#include <platform/nk_message.h>

namespace hos::platform {

Deadline Deadline::FromTimeoutMs(uint64_t timeoutMs) {
    Deadline deadline;
    // Anything from the no-limit value up cannot be reached in a process's life.
    if (timeoutMs >= NK_TIMEOUT_INFINITE) {
        return deadline;
    }
    deadline.m_infinite = false;
    deadline.m_at = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    return deadline;
}

Deadline Deadline::Never() {
    return Deadline{};
}

bool Deadline::HasPassed() const {
    return !m_infinite && std::chrono::steady_clock::now() >= m_at;
}

int Deadline::RemainingPollMs() const {
    if (m_infinite) {
        return -1;
    }
    const auto left = m_at - std::chrono::steady_clock::now();
    if (left <= std::chrono::steady_clock::duration::zero()) {
        return 0;
    }
    const auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return ms > INT_MAX ? INT_MAX : static_cast<int>(ms);
}

}  // namespace hos::platform
