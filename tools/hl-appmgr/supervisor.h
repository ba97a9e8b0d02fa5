// Starts and watches the applications of hl-appmgr: one process group per start, the lifecycle
// calls and Pings they make (logged with name and pid; Pings at debug level), the watchdog after
// ReadyToShowUI, the start timeout before it, restarts with back-off and a start limit, the
// control requests (start, stop, restart, reset-failed, commands) and the status. Faults (a crash,
// a kill by a signal, a hang, a failed start, a restart, the start limit, a refused call) are logged
// at warning level or above, normal starts and stops at info.
//
// Each application starts in a process group of its own, with ChildEnvironment's environment and,
// when the streams give it one, a journal stream of its own as standard output and error (or the
// manager's, when that is the journal and journald gives none). Off the journal its output goes
// through two pipes that the manager's loop reads (TakeWatches), copies to its own
// standard output and error and hands back line by line (AddOutputLine), keeping the last
// kOutputLines of each application. Signals of a stop, a hang or a timeout go to the whole group,
// and what is left of a group when its leader has ended gets SIGKILL.
//
// Nothing here waits or polls: the loop (manager_loop.h) tells it of an ended child (Reap), runs
// Tick at NextDeadline, and reports a stall of the manager itself (NoteStall), after which every
// watch window starts again.
//
// Thread: lifecycle and control calls on the server thread, the rest on the loop's thread. One
// mutex guards everything. A lifecycle call is accepted only from the pid the application runs as;
// a refusal is logged at warning once per calling pid, then at debug level.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "application_streams.h"
#include "core/restart_decision.h"
#include "core/status_table.h"
#include "core/unit_file.h"
#include "i_lifecycle_sink.h"

namespace hl_appmgr {

class Supervisor final : public ILifecycleSink {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kKillGrace{2000};
    static constexpr std::int64_t kUpdateEventMask = 1 << 16;
    static constexpr std::size_t kOutputLines = 10;

    // A started process for the loop to watch: its pidfd, and the read ends of its output pipes
    // (-1 when it writes to a journal stream). The loop owns the descriptors from TakeWatches on.
    struct Watch {
        std::string name;
        pid_t pid = 0;
        int pidfd = -1;
        int out = -1;
        int err = -1;
    };

    Supervisor(std::vector<Unit> units, ApplicationStreams streams);
    ~Supervisor() override;

    // Starts every application once.
    void StartAll();
    // The processes started since the last call.
    std::vector<Watch> TakeWatches();
    // The process pid ended with the wait status.
    void Reap(pid_t pid, int status);
    // Enforces the watchdog, the start and stop timeouts, and restarts what is due.
    void Tick();
    // When Tick is next due; nullopt when nothing waits for time.
    std::optional<Clock::time_point> NextDeadline() const;
    // The manager did not run for `stalledMs` (stopped, or starved): every watch window and start
    // timeout starts again now, so that no application pays for the manager's own pause.
    void NoteStall(std::int64_t stalledMs);
    // One line of an application's output.
    void AddOutputLine(const std::string& name, std::string line);
    // Ends every application: SIGTERM to its group, SIGKILL after the unit's stop_timeout_ms. Each
    // step is logged; the watchdog no longer applies. AllEnded tells when every one is reaped.
    void StopAll();
    bool AllEnded() const;

    // Control requests; 0 or a code of ApplicationManagerControl.
    int Start(const std::string& name);
    int Stop(const std::string& name);
    int Restart(const std::string& name);
    int ResetFailed(const std::string& name);
    int SetCommand(const std::string& app, const std::string& name, std::int64_t value);
    // All applications without output, or the one of `name` with its output lines; false when
    // there is no such application.
    bool Status(const std::string& name, StatusTable& table) const;

    // The applications in one line, for systemd's STATUS=: "1 of 2 applications running", or
    // "NAME failed: start limit reached" once an application has reached its start limit.
    std::string Summary() const;
    // Whether an application has reached its start limit and stays failed.
    bool SomeFailedForGood() const;

    bool OnReadyToInitialize(const std::string& app, long pid) override;
    bool OnReadyToShowUI(const std::string& app, long pid) override;
    bool OnStateChanged(const std::string& app, long pid, std::int64_t state) override;
    bool OnFinishWithInternalError(const std::string& app, long pid, const std::string& error,
                                   const std::string& details) override;
    bool OnPing(const std::string& app, long pid) override;
    bool OnUpdateHandle(const std::string& app, long pid, unsigned int managerEnd) override;
    bool LookUpCommand(const std::string& name, std::int64_t& value) override;

private:
    struct App {
        Unit unit;
        RestartTracker restarts;
        std::string state = "stopped";
        pid_t pid = 0;
        bool shownUI = false;
        bool failedStart = false;
        bool killing = false;        // the manager ended it: a hang or a start timeout
        bool timedOut = false;       // ... because of the start timeout
        bool stopping = false;       // a stop asked for: its end is no fault
        bool restartAfterStop = false;
        bool startLimitHit = false;
        Clock::time_point startedAt{};
        Clock::time_point watchFrom{};
        Clock::time_point killAt{};     // SIGKILL due after SIGABRT or SIGTERM
        Clock::time_point restartAt{};
        Clock::time_point lastPing{};
        bool pinged = false;
        std::string lastExit;
        int restartCount = 0;
        unsigned int updateHandle;
        std::deque<std::string> output;
        explicit App(Unit u);
    };

    App* Find(const std::string& name);
    // The application of `name` if `pid` is its process; else logs the refusal of `call`.
    App* Caller(const std::string& name, long pid, const char* call);
    void Spawn(App& app);
    void Ended(App& app, int status);
    void BeginStop(App& app, Clock::time_point now);
    void Kill(App& app, int signal);

    mutable std::mutex m_mutex;
    ApplicationStreams m_streams;
    std::vector<App> m_apps;
    std::vector<Watch> m_watches;
    std::map<std::string, std::int64_t> m_commands;
    static constexpr std::size_t kRefusedCallersKept = 256;
    std::set<long> m_refusedCallers;  // pids whose refusal was said at warning
    bool m_stoppingAll = false;
};

}  // namespace hl_appmgr
