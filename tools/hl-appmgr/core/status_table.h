// The status of the applications of a running hl-appmgr, as the manager writes it to its state
// file and as `hl-appmgr status` prints it.
//
// State file: <runtime directory>/appmgr/status, replaced whole (written to a temporary file and
// renamed) every 250 ms by the running manager. Text lines:
//   manager_pid=<pid>
//   app=<name>\t<state>\t<pid>\t<last Ping, ms since the Unix epoch, or -1>\t<restarts>
// Names hold no tab or newline (the manager replaces them by '_').
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
    std::string state;  // starting, initializing, running, hung, waiting-restart, exited, failed, stopped
    long pid = 0;       // 0 while no process runs
    std::int64_t lastPingUnixMs = -1;
    int restarts = 0;
};

struct StatusTable {
    long managerPid = 0;
    std::vector<AppStatus> apps;
};

std::string SerializeStatus(const StatusTable& table);
std::optional<StatusTable> ParseStatus(std::string_view text);

// Human-readable table; "since last Ping" is nowUnixMs - lastPingUnixMs ("-" when none yet).
std::string FormatStatusText(const StatusTable& table, std::int64_t nowUnixMs);
// One JSON object: {"manager_pid": N, "applications": [{"name", "state", "pid",
// "ms_since_last_ping" (null when none), "restarts"}]}.
std::string FormatStatusJson(const StatusTable& table, std::int64_t nowUnixMs);

}  // namespace hl_appmgr
