#include "daemon_options.h"

namespace hl_settingsd {

const char* const kUsage =
    "Usage: hl-settingsd [--state-dir DIR] [--defaults FILE] [--log-level LEVEL] SERVICE\n"
    "\n"
    "Serves one settings store (NkISM, NkISMReg, NkISMCbk) on the hosted platform under the name SERVICE:\n"
    "  hl.settings_manager.MSmgr         in memory, starting from the JSON defaults file\n"
    "  hl.settings_manager.PSmgr, SecretPSmgr, RdpPSmgr, SkalaPSmgr, WebPSmgr, UpdatePSmgr\n"
    "                                    persistent, in SQLite: DIR/<SERVICE>.db\n"
    "The short form after 'hl.settings_manager.' is taken too (MSmgr). Once it serves it prints 'ready'\n"
    "on standard output; under systemd (NOTIFY_SOCKET set) it sends READY=1 and STATUS=serving SERVICE\n"
    "by sd_notify instead, and STOPPING=1 when it stops (for a Type=notify unit).\n"
    "\n"
    "Options:\n"
    "  --state-dir DIR    where persistent stores live (default $XDG_STATE_HOME/halcyra,\n"
    "                     else ~/.local/state/halcyra; created with mode 0700)\n"
    "  --defaults FILE    the defaults of MSmgr (default: msmgr.json shipped with the program)\n"
    "  --log-level LEVEL  0 trace, 1 debug, 2 info (default), 3 warning, 4 error, 5 critical, 6 off;\n"
    "                     at 1 every request is logged as 'request <Method> ...'\n"
    "  --help             this text\n"
    "\n"
    "Exit codes: 0 stopped by SIGTERM or SIGINT; 1 usage error; 2 the store or the defaults can't be\n"
    "opened or read; 3 the service can't be served (its name is in use in this runtime directory, or\n"
    "its store is locked by another daemon).\n";

std::optional<DaemonOptions> ParseOptions(const std::vector<std::string>& arguments, std::string& error) {
    DaemonOptions options;
    std::optional<std::string> service;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--help" || argument == "-h") {
            options.help = true;
            return options;
        }
        if (argument == "--state-dir" || argument == "--defaults" || argument == "--log-level" ||
            argument == "--fault-for-testing") {
            if (!hasValue) {
                error = argument + " needs a value";
                return std::nullopt;
            }
            const std::string& value = arguments[++i];
            if (argument == "--state-dir") {
                options.stateDir = value;
            } else if (argument == "--defaults") {
                options.defaults = value;
            } else if (argument == "--fault-for-testing") {
                if (value != "writenext-refused" && value != "writenext-exit") {
                    error = "--fault-for-testing takes writenext-refused or writenext-exit";
                    return std::nullopt;
                }
                options.faultForTesting = value;
            } else if (value.size() == 1 && value[0] >= '0' && value[0] <= '6') {
                options.logLevel = value[0] - '0';
            } else {
                error = "--log-level takes 0 to 6, not '" + value + "'";
                return std::nullopt;
            }
        } else if (!argument.empty() && argument[0] == '-') {
            error = "unknown option '" + argument + "'";
            return std::nullopt;
        } else if (service) {
            error = "one service per process; '" + argument + "' is one too many";
            return std::nullopt;
        } else {
            service = argument;
        }
    }
    if (!service) {
        error = "no service named";
        return std::nullopt;
    }
    const auto found = settings_manager::FindService(*service);
    if (!found) {
        error = "'" + *service + "' is not a settings service";
        return std::nullopt;
    }
    options.service = *found;
    return options;
}

}  // namespace hl_settingsd
