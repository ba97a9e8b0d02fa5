// Starts and watches the applications of hl-appmgr: one process per unit, the lifecycle calls
// and Pings they make (logged with name and pid; Pings at debug level), the watchdog after
// ReadyToShowUI, restarts with back-off and a start limit, the commands of the drop box and the
// state file. Faults (a crash, a kill by a signal, a hang, a failed start, a restart, the start
// limit) are logged at warning level or above, normal starts and stops at info.
//
// Each application starts with ChildEnvironment's environment and, when the streams give it one, a
// journal stream of its own as standard output and error.
//
// Thread: the lifecycle sink runs on the server thread; Start/Tick/Stop on the main thread. One
// mutex guards everything. The peer pid of a call is not exposed by the platform, so a call is
// matched to the process by the application's name, which is the argv[0] the manager gave it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
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

    Supervisor(std::vector<Unit> units, ApplicationStreams streams);
    ~Supervisor() override;

    // Starts every application once.
    void StartAll();
    // Reaps ended processes, enforces the watchdog, restarts what is due, applies posted commands.
    void Tick();
    // Ends every application: SIGTERM, then SIGKILL after the unit's stop_timeout_ms if it is still
    // there (an application whose teardown waits for something, such as a decision nobody gives).
    // Each step is logged. Returns when all are reaped; the watchdog no longer applies to them.
    void StopAll();
    StatusTable Status() const;
    // The applications in one line, for systemd's STATUS=: "1 of 2 applications running", or
    // "NAME failed: start limit reached" once an application has reached its start limit.
    std::string Summary() const;
    // Whether an application has reached its start limit and stays failed.
    bool SomeFailedForGood() const;

    void OnReadyToInitialize(const std::string& app) override;
    void OnReadyToShowUI(const std::string& app) override;
    void OnStateChanged(const std::string& app, std::int64_t state) override;
    void OnFinishWithInternalError(const std::string& app, const std::string& error,
                                   const std::string& details) override;
    void OnPing(const std::string& app) override;
    void OnUpdateHandle(const std::string& app, unsigned int managerEnd) override;
    bool LookUpCommand(const std::string& name, std::int64_t& value) override;

private:
    struct App {
        Unit unit;
        RestartTracker restarts;
        std::string state = "starting";
        pid_t pid = 0;
        bool shownUI = false;
        bool failedStart = false;
        bool hungKill = false;
        bool stopping = false;
        bool startLimitHit = false;
        Clock::time_point watchFrom{};
        Clock::time_point abortedAt{};
        Clock::time_point restartAt{};
        Clock::time_point stopDeadline{};
        std::int64_t lastPingUnixMs = -1;
        int restartCount = 0;
        unsigned int updateHandle;
        explicit App(Unit u);
    };

    App* Find(const std::string& name);
    long PidOf(const std::string& name);
    void Spawn(App& app);
    void Ended(App& app, int status);
    void ApplyCommands();

    mutable std::mutex m_mutex;
    ApplicationStreams m_streams;
    std::vector<App> m_apps;
    std::map<std::string, std::int64_t> m_commands;
};

}  // namespace hl_appmgr
