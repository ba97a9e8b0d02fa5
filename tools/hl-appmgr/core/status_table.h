// The status of the applications of a running hl-appmgr: what the manager answers to the control
// interface's Status (a JSON text) and how `hl-appmgr status` prints it.
//
// JSON: {"manager_pid": N, "applications": [{"name", "state", "pid" (0 while none runs), "uptime_ms"
// (null while none runs), "last_exit" (null before the first end), "restarts", "ms_since_last_ping"
// (null before the first Ping of this run), "output" (the last lines of its output, oldest first;
// empty when they were not asked for)}]}.
// Pure functions; safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hl_appmgr {

struct AppStatus {
    std::string name;
    // starting, initializing, running, hung, stopping, waiting-restart, exited, failed, stopped
    std::string state;
    long pid = 0;
    std::int64_t uptimeMs = -1;         // -1: no process
    std::string lastExit;               // "exited with status N", "killed by signal N"; empty: none yet
    int restarts = 0;
    std::int64_t msSinceLastPing = -1;  // -1: none yet
    std::vector<std::string> output;
};

struct StatusTable {
    long managerPid = 0;
    std::vector<AppStatus> apps;
};

// Whether the state counts as active (is-active, status's exit code).
bool IsActive(std::string_view state);

std::string StatusToJson(const StatusTable& table);
// nullopt for a text that is not such an object.
std::optional<StatusTable> StatusFromJson(std::string_view text);

// Human-readable: one line per application; with `detail`, systemctl status's form (state, pid,
// uptime, last exit, restarts, last Ping, then the output lines). With `color`, the state is green
// when active, red when failed or hung, yellow otherwise.
std::string FormatStatusText(const StatusTable& table, bool detail, bool color = false);

}  // namespace hl_appmgr
