// hl-appmgr status: the running manager's applications, from its state file.
#include <signal.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "commands.h"
#include "core/status_table.h"

namespace hl_appmgr {

namespace {

constexpr const char* kHelp =
    "Usage: hl-appmgr status [--json]\n"
    "\n"
    "Prints each application of the running hl-appmgr: state (starting, initializing, running, hung,\n"
    "waiting-restart, exited, failed, stopped), pid, time since its last Ping and restart count.\n"
    "--json prints one JSON object: {\"manager_pid\": N, \"applications\": [{\"name\", \"state\", \"pid\",\n"
    "\"ms_since_last_ping\" (null before the first Ping), \"restarts\"}]}.\n"
    "It reads the state file <runtime directory>/appmgr/status, which the manager rewrites every 250 ms.\n"
    "\n"
    "Exit codes: 0 printed; 1 usage error; 3 no hl-appmgr runs for this runtime directory.\n";

}  // namespace

int RunStatus(const std::vector<std::string>& arguments) {
    bool json = false;
    for (const std::string& argument : arguments) {
        if (argument == "--help" || argument == "-h") {
            std::fputs(kHelp, stdout);
            return 0;
        }
        if (argument != "--json") {
            std::fprintf(stderr, "hl-appmgr status: unknown argument '%s'\n\n%s", argument.c_str(), kHelp);
            return 1;
        }
        json = true;
    }
    const std::string path = StatusFilePath(false);
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    const auto table = in ? ParseStatus(text.str()) : std::nullopt;
    if (!table || table->managerPid <= 0 ||
        (::kill(static_cast<pid_t>(table->managerPid), 0) != 0 && errno == ESRCH)) {
        std::fprintf(stderr, "hl-appmgr status: no hl-appmgr is running (no live state file at %s)\n",
                     path.c_str());
        return 3;
    }
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    std::fputs((json ? FormatStatusJson(*table, now) : FormatStatusText(*table, now)).c_str(), stdout);
    return 0;
}

}  // namespace hl_appmgr
