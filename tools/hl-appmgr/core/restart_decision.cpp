#include "restart_decision.h"

#include <algorithm>

namespace hl_appmgr {

RestartTracker::RestartTracker(const Unit& unit)
    : m_policy(unit.restart), m_startLimit(unit.startLimit), m_windowMs(unit.startLimitIntervalMs) {}

void RestartTracker::NoteStart(std::int64_t nowMs) {
    m_starts.push_back(nowMs);
}

RestartDecision RestartTracker::Decide(EndKind kind, std::int64_t nowMs) {
    RestartDecision decision;
    const bool wanted =
        m_policy == RestartPolicy::Always || (m_policy == RestartPolicy::OnFailure && kind != EndKind::Clean);
    if (!wanted || kind == EndKind::Clean) {
        // A clean exit is never restarted, whatever the policy says.
        return decision;
    }
    while (!m_starts.empty() && nowMs - m_starts.front() >= m_windowMs) {
        m_starts.pop_front();
    }
    if (static_cast<int>(m_starts.size()) >= m_startLimit) {
        decision.startLimitHit = true;
        return decision;
    }
    decision.restart = true;
    const std::size_t doublings = m_starts.empty() ? 0 : m_starts.size() - 1;
    decision.delayMs = kFirstDelayMs;
    for (std::size_t i = 0; i < doublings && decision.delayMs < kMaxDelayMs; ++i) {
        decision.delayMs *= 2;
    }
    decision.delayMs = std::min(decision.delayMs, kMaxDelayMs);
    return decision;
}

}  // namespace hl_appmgr
