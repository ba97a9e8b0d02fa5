#pragma once
// The command line of hl-settingsd:
//
//   hl-settingsd [--state-dir DIR] [--defaults FILE] [--log-level LEVEL] SERVICE
//
// The tests add --fault-for-testing writenext-refused|writenext-exit, which nothing else may use.
//
// SERVICE is one of the seven service names (or its short form, "MSmgr"). --state-dir is where a
// persistent service keeps its database (default $XDG_STATE_HOME/halcyra, else ~/.local/state/halcyra);
// --defaults the JSON defaults of the non-persistent service (default: the file shipped beside the
// program); --log-level 0 (trace) to 6 (off), default 2.

#include <settings_manager/service_names.h>

#include <optional>
#include <string>
#include <vector>

namespace hl_settingsd {

struct DaemonOptions {
    settings_manager::ServiceName service{};
    std::optional<std::string> stateDir;
    std::optional<std::string> defaults;
    int logLevel = 2;
    // A fault the client's tests need, which no well-formed exchange produces; empty: none.
    std::string faultForTesting;
    bool help = false;
};

extern const char* const kUsage;

// The options, or none with a reason in error.
std::optional<DaemonOptions> ParseOptions(const std::vector<std::string>& arguments, std::string& error);

}  // namespace hl_settingsd
