// What the supervisor does when an application's process has ended: restart it (after how long)
// or leave it. Pure logic, no clock of its own: times are milliseconds on any monotonic scale.
// Thread: a value type; not shared.
#pragma once

#include <cstdint>
#include <deque>

#include "unit_file.h"

namespace hl_appmgr {

// How the process ended, as the supervisor saw it.
enum class EndKind {
    Clean,        // exit status 0, and no FinishWithInternalError before it
    Failure,      // non-zero exit status, or killed by a signal the manager did not send
    FailedStart,  // FinishWithInternalError was called, whatever the exit status
    Hung,         // the watchdog ended it
};

struct RestartDecision {
    bool restart = false;
    bool startLimitHit = false;  // a restart was due but the start limit forbids it
    std::int64_t delayMs = 0;
};

class RestartTracker {
public:
    static constexpr std::int64_t kFirstDelayMs = 500;
    static constexpr std::int64_t kMaxDelayMs = 30000;

    explicit RestartTracker(const Unit& unit);

    // Records a start at nowMs.
    void NoteStart(std::int64_t nowMs);
    // The decision for a process that ended at nowMs in the given way. Back-off doubles with each
    // start still inside the start limit window: 500 ms, 1 s, 2 s ... up to 30 s.
    RestartDecision Decide(EndKind kind, std::int64_t nowMs);
    // Forgets the starts so far (reset-failed): the start limit counts from zero again.
    void Reset() { m_starts.clear(); }

private:
    RestartPolicy m_policy;
    int m_startLimit;
    std::int64_t m_windowMs;
    std::deque<std::int64_t> m_starts;
};

}  // namespace hl_appmgr
