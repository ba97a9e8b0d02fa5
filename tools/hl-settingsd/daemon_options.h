#pragma once
// The command line of hl-settingsd, on the tools' command-line core (hl::cli::Tool):
//
//   hl-settingsd [--state-dir DIR] [--defaults FILE] [--log-level LEVEL] SERVICE
//
// The tests add --fault-for-testing writenext-refused|writenext-exit (hidden from --help), which
// nothing else may use.
//
// SERVICE is one of the seven service names (or its short form, "MSmgr"). --state-dir is where a
// persistent service keeps its database (default $XDG_STATE_HOME/halcyra, else ~/.local/state/halcyra);
// --defaults the JSON defaults of the non-persistent service (default: the file shipped beside the
// program); --log-level 0 (trace) to 6 (off), default 2.

#include <settings_manager/service_names.h>

#include <hl_cli/tool.h>

#include <optional>
#include <string>
#include <vector>

namespace hl_settingsd {

inline constexpr int kExitStopped = 0;
inline constexpr int kExitStore = 2;  // shared with usage errors, as the store's code always was
inline constexpr int kExitServe = 3;

struct DaemonOptions {
    settings_manager::ServiceName service{};
    std::optional<std::string> stateDir;
    std::optional<std::string> defaults;
    int logLevel = 2;
    // A fault the client's tests need, which no well-formed exchange produces; empty: none.
    std::string faultForTesting;
};

// The tool with hl-settingsd's description and exit-code table.
hl::cli::Tool MakeTool();

// Parses the command line into options. nullopt: go on; otherwise the status main returns (0 after
// --help or --version, hl::cli::kExitUsage after a usage error, both printed).
std::optional<int> ParseOptions(hl::cli::Tool& tool, int argc, const char* const* argv, DaemonOptions& options);

}  // namespace hl_settingsd
