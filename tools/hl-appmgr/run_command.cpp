// hl-appmgr run: the manager itself.
#include <diagnostics/default_logger_impl.h>
#include <diagnostics/hos_logger.h>
#include <diagnostics/log.h>

#include <signal.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

#include "commands.h"
#include "core/unit_file.h"
#include "manager_loop.h"
#include "manager_server.h"
#include "manager_services.h"
#include "supervisor.h"
#include "systemd_notifier.h"

namespace hl_appmgr {

namespace {

constexpr const char* kRunDescription =
    "Serves the application manager (type hl.app_manager.ApplicationManager.applicationManager, server\n"
    "applicationManager_id, services app_manager.applicationController, app_manager.applicationCommands,\n"
    "app_manager.applicationWatchdog and app_manager.control), starts each application of a unit file\n"
    "and PROGRAM, each in a process group of its own, and supervises them until SIGTERM or SIGINT, which\n"
    "ends the applications (SIGTERM to the group, then SIGKILL after the unit's stop_timeout_ms, 5 s by\n"
    "default) and the manager. Each application gets its name as argv[0]; its calls are accepted only\n"
    "from its own process. Every lifecycle call is logged as \"NAME[PID]: CALL\" on standard error, each\n"
    "Ping so at debug level. The manager keeps the last lines of each application's output for status.\n"
    "Under systemd (NOTIFY_SOCKET set) it reports READY=1 once serving, STATUS= when its applications\n"
    "change and WATCHDOG=1 while alive, until an application has reached its start limit.";

struct RunOptions {
    std::vector<std::string> unitFiles;
    std::string name;
    std::int64_t watchdogIntervalMs = 0;
    std::string restart;
    int logLevel = static_cast<int>(hos::logger::LogLevel::Info);
};

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

int Run(const RunOptions& options, const std::vector<std::string>& program) {
    std::vector<Unit> units;
    for (const std::string& path : options.unitFiles) {
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
    }
    if (!program.empty()) {
        // The options were checked by the command line; the program is taken as it is.
        Unit unit = UnitForProgram(program.front(), {program.begin() + 1, program.end()});
        if (!options.name.empty()) {
            unit.name = options.name;
        }
        if (options.watchdogIntervalMs > 0) {
            unit.watchdogIntervalMs = options.watchdogIntervalMs;
        }
        if (!options.restart.empty()) {
            unit.restart = options.restart == "no"       ? RestartPolicy::No
                           : options.restart == "always" ? RestartPolicy::Always
                                                         : RestartPolicy::OnFailure;
        }
        units.push_back(std::move(unit));
    }
    if (units.empty()) {
        std::fprintf(stderr, "hl-appmgr run: nothing to run: give --unit FILE or PROGRAM\n"
                             "Try 'hl-appmgr run --help' for more information.\n");
        return 2;
    }

    hos::logger::HOSLogger::RootLogger().SetLevel(static_cast<hos::logger::LogLevel>(options.logLevel));
    signal(SIGPIPE, SIG_IGN);
    ManagerLoop::Block();

    auto supervisor = std::make_shared<Supervisor>(
        std::move(units), ApplicationStreams(hos::logger::StandardErrorIsTheJournal()));
    auto notifier = std::make_shared<SystemdNotifier>();
    ManagerLoop loop(supervisor, notifier);
    if (!loop.Setup()) {
        return kExitFailed;
    }
    ManagerServer server(std::make_shared<ManagerServices>(supervisor), [&loop] { loop.Wake(); });
    if (!server.Start()) {
        return kExitFailed;
    }
    HL_LOG(hos::logger::LogLevel::Info, "hl-appmgr serving {} as {}", ManagerServer::kPublishedType,
           ManagerServer::kServerName);
    supervisor->StartAll();
    notifier->Ready(supervisor->Summary());
    const int rc = loop.Run();
    server.Stop();
    HL_LOG(hos::logger::LogLevel::Info, "hl-appmgr stopped");
    return rc;
}

}  // namespace

Action AddRun(CLI::App& app) {
    auto options = std::make_shared<RunOptions>();
    auto program = std::make_shared<std::vector<std::string>>();
    CLI::App* run = app.add_subcommand("run", "start applications and supervise them");
    run->description(kRunDescription);
    run->add_option("--unit", options->unitFiles,
                    "an application described by a unit file (see tools/hl-appmgr/README.md); repeat for more")
        ->option_text("FILE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    run->add_option("--name", options->name, "the name of PROGRAM (default: its basename)");
    run->add_option("--watchdog-interval", options->watchdogIntervalMs, "PROGRAM's watchdog interval (default 5000)")
        ->option_text("MS")
        ->check(CLI::PositiveNumber);
    run->add_option("--restart", options->restart, "PROGRAM's restart policy (default on-failure)")
        ->check(CLI::IsMember({"no", "on-failure", "always"}))
        ->option_text("POLICY");
    run->add_option("--log-level", options->logLevel,
                    "0 trace, 1 debug (each Ping), 2 info (default), 3 warning, 4 error, 5 critical, 6 off")
        ->check(CLI::Range(0, 6))
        ->option_text("LEVEL");
    run->add_option("program", *program, "PROGRAM [ARGS...], after -- when an argument begins with -")
        ->expected(-1);
    run->positionals_at_end();
    return [options, program] { return Run(*options, *program); };
}

}  // namespace hl_appmgr
