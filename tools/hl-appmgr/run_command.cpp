// hl-appmgr run: the manager itself.
#include <diagnostics/default_logger_impl.h>
#include <diagnostics/hos_logger.h>
#include <diagnostics/log.h>

#include <signal.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <thread>

#include "commands.h"
#include "core/command_box.h"
#include "core/status_table.h"
#include "core/unit_file.h"
#include "manager_server.h"
#include "manager_services.h"
#include "supervisor.h"
#include "systemd_notifier.h"

namespace hl_appmgr {

namespace {

constexpr const char* kHelp =
    "Usage: hl-appmgr run [--unit FILE]... [--name NAME] [--watchdog-interval MS] [--restart POLICY]\n"
    "                     [--log-level LEVEL] [--] [PROGRAM [ARGS...]]\n"
    "\n"
    "Serves the application manager (type hl.app_manager.ApplicationManager.applicationManager, server\n"
    "applicationManager_id, services app_manager.applicationController, app_manager.applicationCommands,\n"
    "app_manager.applicationWatchdog), starts each application of a unit file and PROGRAM, and\n"
    "supervises them until SIGTERM or SIGINT, which ends the applications (SIGTERM, then SIGKILL after\n"
    "the unit's stop_timeout_ms, 5 s by default) and the manager.\n"
    "Each application gets its name as argv[0]; calls are matched to it by that name. Every lifecycle\n"
    "call is logged as \"NAME[PID]: CALL\" on standard error, each Ping so at debug level.\n"
    "\n"
    "  --unit FILE              an application described by a unit file (see tools/hl-appmgr/README.md)\n"
    "  --name NAME              the name of PROGRAM (default: its basename)\n"
    "  --watchdog-interval MS   PROGRAM's watchdog interval (default 5000)\n"
    "  --restart POLICY         PROGRAM's policy: no, on-failure (default) or always\n"
    "  --log-level LEVEL        0 trace, 1 debug (each Ping), 2 info (default), 3 warning, 4 error,\n"
    "                           5 critical, 6 off\n"
    "\n"
    "Under systemd (NOTIFY_SOCKET set) it reports READY=1 once serving, STATUS= when its applications\n"
    "change (\"1 of 1 applications running\") and WATCHDOG=1 while alive, until an application has\n"
    "reached its start limit: then systemd's watchdog restarts the manager. The applications never\n"
    "see NOTIFY_SOCKET, WATCHDOG_USEC or WATCHDOG_PID. When its standard error is the journal\n"
    "(JOURNAL_STREAM), each application writes to a journal stream of its own, under its name.\n"
    "\n"
    "Exit codes: 0 ended by SIGTERM/SIGINT; 1 usage error; 2 a unit file is unreadable or wrong;\n"
    "3 the manager's server can't be set up (another hl-appmgr serves this runtime directory).\n";

volatile sig_atomic_t g_stop = 0;

void OnStopSignal(int) {
    g_stop = 1;
}

bool ReadFile(const std::string& path, std::string& text) {
    std::ifstream in(path);
    if (!in) {
        return false;
    }
    std::stringstream buffer;
    buffer << in.rdbuf();
    text = buffer.str();
    return true;
}

void WriteStatusFile(const StatusTable& table) {
    const std::string path = StatusFilePath(true);
    if (path.empty()) {
        return;
    }
    const std::string temporary = path + ".tmp";
    {
        std::ofstream out(temporary, std::ios::trunc);
        out << SerializeStatus(table);
    }
    std::rename(temporary.c_str(), path.c_str());
}

}  // namespace

std::string StatusFilePath(bool create) {
    const std::string dir = ManagerDirectory(create);
    return dir.empty() ? std::string() : dir + "/status";
}

int RunRun(const std::vector<std::string>& arguments) {
    std::vector<Unit> units;
    std::string name;
    std::int64_t interval = 0;
    std::string restart;
    int logLevel = static_cast<int>(hos::logger::LogLevel::Info);
    std::size_t i = 0;
    for (; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--help" || argument == "-h") {
            std::fputs(kHelp, stdout);
            return 0;
        }
        if (argument == "--") {
            ++i;
            break;
        }
        if (argument == "--unit" && hasValue) {
            const std::string& path = arguments[++i];
            std::string text;
            if (!ReadFile(path, text)) {
                std::fprintf(stderr, "hl-appmgr: can't read the unit file %s\n", path.c_str());
                return 2;
            }
            UnitParseResult parsed = ParseUnit(text);
            if (!parsed.ok) {
                std::fprintf(stderr, "hl-appmgr: %s: %s\n", path.c_str(), parsed.error.c_str());
                return 2;
            }
            units.push_back(std::move(parsed.unit));
        } else if (argument == "--name" && hasValue) {
            name = arguments[++i];
        } else if (argument == "--watchdog-interval" && hasValue) {
            const std::string& text = arguments[++i];
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), interval);
            if (error != std::errc() || end != text.data() + text.size() || interval <= 0) {
                std::fprintf(stderr, "hl-appmgr: --watchdog-interval needs a positive number of ms\n");
                return 1;
            }
        } else if (argument == "--restart" && hasValue) {
            restart = arguments[++i];
        } else if (argument == "--log-level" && hasValue) {
            const std::string& text = arguments[++i];
            if (text.size() != 1 || text[0] < '0' || text[0] > '6') {
                std::fprintf(stderr, "hl-appmgr: --log-level takes 0 to 6, not '%s'\n", text.c_str());
                return 1;
            }
            logLevel = text[0] - '0';
        } else if (!argument.empty() && argument[0] == '-') {
            std::fprintf(stderr, "hl-appmgr: unknown or incomplete option '%s'\n\n%s", argument.c_str(),
                         kHelp);
            return 1;
        } else {
            break;
        }
    }
    if (i < arguments.size()) {
        // The program of the command line, as a unit of its own (the unit file syntax checks it).
        std::string text = "program=" + arguments[i] + "\n";
        for (std::size_t a = i + 1; a < arguments.size(); ++a) {
            text += "argument=" + arguments[a] + "\n";
        }
        if (!name.empty()) {
            text += "name=" + name + "\n";
        }
        if (interval > 0) {
            text += "watchdog_interval_ms=" + std::to_string(interval) + "\n";
        }
        if (!restart.empty()) {
            text += "restart=" + restart + "\n";
        }
        UnitParseResult parsed = ParseUnit(text);
        if (!parsed.ok || arguments[i].find('\n') != std::string::npos) {
            std::fprintf(stderr, "hl-appmgr: %s\n", parsed.error.c_str());
            return 1;
        }
        units.push_back(std::move(parsed.unit));
    }
    if (units.empty()) {
        std::fprintf(stderr, "hl-appmgr: nothing to run: give --unit FILE or PROGRAM\n\n%s", kHelp);
        return 1;
    }

    hos::logger::HOSLogger::RootLogger().SetLevel(static_cast<hos::logger::LogLevel>(logLevel));

    struct sigaction action {};
    action.sa_handler = OnStopSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    signal(SIGPIPE, SIG_IGN);

    auto supervisor = std::make_shared<Supervisor>(
        std::move(units), ApplicationStreams(hos::logger::StandardErrorIsTheJournal()));
    auto services = std::make_shared<ManagerServices>(supervisor);
    ManagerServer server(services);
    if (!server.Start()) {
        return 3;
    }
    // Commands left over from an earlier manager are not for this one.
    TakeCommands(nullptr);
    HL_LOG(hos::logger::LogLevel::Info, "hl-appmgr serving {} as {}", ManagerServer::kPublishedType,
           ManagerServer::kServerName);
    SystemdNotifier notifier;
    supervisor->StartAll();
    notifier.Ready(supervisor->Summary());

    auto lastWrite = std::chrono::steady_clock::time_point{};
    while (g_stop == 0) {
        supervisor->Tick();
        const auto now = std::chrono::steady_clock::now();
        if (now - lastWrite >= std::chrono::milliseconds(250)) {
            WriteStatusFile(supervisor->Status());
            lastWrite = now;
        }
        const std::string summary = supervisor->Summary();
        if (supervisor->SomeFailedForGood()) {
            notifier.StopWatchdog(summary);
        }
        notifier.Status(summary);
        notifier.KeepAlive(now);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    HL_LOG(hos::logger::LogLevel::Info, "hl-appmgr stopping");
    notifier.Stopping();
    supervisor->StopAll();
    server.Stop();
    WriteStatusFile(supervisor->Status());
    const std::string path = StatusFilePath(false);
    if (!path.empty()) {
        std::remove(path.c_str());
    }
    HL_LOG(hos::logger::LogLevel::Info, "hl-appmgr stopped");
    return 0;
}

}  // namespace hl_appmgr
