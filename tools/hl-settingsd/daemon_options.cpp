#include "daemon_options.h"

namespace hl_settingsd {

namespace {

constexpr const char* kDescription =
    "Serves one settings store (NkISM, NkISMReg, NkISMCbk) on the hosted platform under the name SERVICE:\n"
    "  hl.settings_manager.MSmgr         in memory, starting from the JSON defaults file\n"
    "  hl.settings_manager.PSmgr, SecretPSmgr, RdpPSmgr, SkalaPSmgr, WebPSmgr, UpdatePSmgr\n"
    "                                    persistent, in SQLite: DIR/<SERVICE>.db\n"
    "The short form after 'hl.settings_manager.' is taken too (MSmgr). Once it serves it prints 'ready'\n"
    "on standard output; under systemd (NOTIFY_SOCKET set) it sends READY=1 and STATUS=serving SERVICE\n"
    "by sd_notify instead, and STOPPING=1 when it stops (for a Type=notify unit). It logs on standard\n"
    "error.";

}  // namespace

hl::cli::Tool MakeTool() {
    return hl::cli::Tool(
        "hl-settingsd", kDescription,
        {{kExitStopped, "stopped by SIGTERM or SIGINT"},
         {hl::cli::kExitUsage,
          "usage error, or the store or the defaults can't be opened or read (a damaged or foreign store, a "
          "state directory others may write; the log says which)"},
         {kExitServe,
          "the service can't be served: its name is in use in this runtime directory, or its store is locked by "
          "another daemon (the log names its pid)"}});
}

std::optional<int> ParseOptions(hl::cli::Tool& tool, int argc, const char* const* argv, DaemonOptions& options) {
    CLI::App& app = tool.App();
    std::string service;
    std::string stateDir;
    std::string defaults;
    app.add_option("--state-dir", stateDir,
                   "where persistent stores live (default $XDG_STATE_HOME/halcyra, else ~/.local/state/halcyra; "
                   "created with mode 0700, and refused when another user owns it or may write it)")
        ->option_text("DIR");
    app.add_option("--defaults", defaults, "the defaults of MSmgr (default: msmgr.json shipped with the program)")
        ->option_text("FILE");
    app.add_option("--log-level", options.logLevel,
                   "0 trace, 1 debug, 2 info (default), 3 warning, 4 error, 5 critical, 6 off; at 1 every request "
                   "is logged as 'request <Method> ...'")
        ->option_text("LEVEL")
        ->check(CLI::Range(0, 6));
    app.add_option("--fault-for-testing", options.faultForTesting)
        ->check(CLI::IsMember(
            {"writenext-refused", "writenext-exit", "read-count-zero", "read-count-short", "readnext-bad-list"}))
        ->group("");
    app.add_option("SERVICE", service, "the settings service to serve")->required();
    if (const auto status = tool.Parse(argc, argv)) {
        return status;
    }
    const auto found = settings_manager::FindService(service);
    if (!found) {
        return tool.UsageError("'" + service + "' is not a settings service");
    }
    options.service = *found;
    if (app.count("--state-dir") != 0) {
        options.stateDir = stateDir;
    }
    if (app.count("--defaults") != 0) {
        options.defaults = defaults;
    }
    return std::nullopt;
}

}  // namespace hl_settingsd
