// hl-appmgr: the application manager of the hosted platform.
#include <diagnostics/hos_logger.h>

#include <hl_cli/tool.h>

#include "commands.h"

namespace {

constexpr const char* kDescription =
    "Starts and supervises the applications of the hosted platform (run), and answers requests about\n"
    "them as systemctl does about units: start, stop, restart, reset-failed, status [NAME], is-active\n"
    "NAME, and command, which sets a command of an application. The requests reach the running manager\n"
    "of the runtime directory ($HL_RUNTIME_DIR, else $XDG_RUNTIME_DIR/halcyra, else /tmp/halcyra-<uid>)\n"
    "over its control interface. 'hl-appmgr COMMAND --help' gives a command's arguments.";

}  // namespace

int main(int argc, char** argv) {
    hl::cli::Tool tool("hl-appmgr", kDescription,
                       {{0, "done; status and is-active: the applications are active"},
                        {hl_appmgr::kExitFailed,
                         "no hl-appmgr answers, or it refused or failed the request; run: the manager can't be "
                         "set up (another one serves this runtime directory)"},
                        {hl::cli::kExitUsage, "usage error; run: a unit file that can't be read or is wrong"},
                        {hl_appmgr::kExitNotActive, "status, is-active: an application is not active"},
                        {hl_appmgr::kExitNoSuchApplication, "no such application"}});
    CLI::App& app = tool.App();
    app.require_subcommand(1);
    hl_appmgr::Action action = hl_appmgr::AddRun(app);
    hl_appmgr::Action control;
    hl_appmgr::AddControlCommands(app, control);
    if (const auto status = tool.Parse(argc, argv)) {
        return *status;
    }
    hos::logger::HOSLogger::Setup("APPMGR", hos::logger::LogLevel::Info, nullptr);
    if (app.got_subcommand("run")) {
        return action();
    }
    return control();
}
