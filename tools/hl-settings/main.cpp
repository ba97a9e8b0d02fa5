// hl-settings: reads, writes, deletes and watches settings of a settings service.
#include "commands.h"
#include "core/exit_code.h"
#include "core/invocation.h"

#include <diagnostics/hos_logger.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr const char* kHelp =
    "Usage: hl-settings [--service NAME] [--wait MS] [--verbose] COMMAND [ARGS...]\n"
    "\n"
    "Commands:\n"
    "  get PATH [--json]                 print the value at PATH (a list or map prints as tree)\n"
    "  set PATH VALUE [--type TYPE]      write VALUE, read as TYPE (default string)\n"
    "  delete PATH                       delete PATH and everything below it\n"
    "  tree [PATH] [--json]              print the whole subtree at PATH (default: the root)\n"
    "  monitor PATH [--json]             print each change at or below PATH until Ctrl-C\n"
    "\n"
    "PATH is the settings path text, such as locale/language (a final / is optional; / is the\n"
    "root). Names may not hold / \\ \" ' ` % _ or a space; numbers (list elements) go to 65535.\n"
    "\n"
    "TYPE: none list map bool i8 i16 i32 i64 u8 u16 u32 u64 double timestamp string bytes json\n"
    "  bool true|false; integers decimal or 0x hex; bytes as hex pairs (\"de ad be ef\");\n"
    "  timestamp its 64-bit number; none, list and map take no VALUE (an empty list or map);\n"
    "  json a JSON document: object -> map, array -> list, integer -> i64, other number -> double.\n"
    "\n"
    "Options:\n"
    "  --service NAME   the settings service (default hl.settings_manager.MSmgr, the non-persistent\n"
    "                   one; others: hl.settings_manager.PSmgr, SecretPSmgr, RdpPSmgr, SkalaPSmgr,\n"
    "                   WebPSmgr, UpdatePSmgr); the short name (MSmgr) is taken too\n"
    "  --wait MS        wait up to MS milliseconds for the service to be there (default 1000)\n"
    "  --verbose, -v    write the settings client's log lines to standard error\n"
    "  --json           machine-readable output (get, tree, monitor)\n"
    "  --               end of options (for a VALUE that begins with --)\n"
    "\n"
    "The runtime directory of the hosted platform is $HL_RUNTIME_DIR, else $XDG_RUNTIME_DIR/halcyra,\n"
    "else /tmp/halcyra-<uid>.\n"
    "\n"
    "Exit codes: 0 success; 1 not found; 2 usage error; 3 service unreachable or IPC failure;\n"
    "4 the service refused the request.\n";

}  // namespace

int main(int argc, char** argv) {
    using namespace hl_settings;
    std::string error;
    const auto invocation = ParseInvocation(std::vector<std::string>(argv + 1, argv + argc), error);
    if (!invocation) {
        return ReportUsage(error);
    }
    if (invocation->help) {
        std::fputs(kHelp, stdout);
        return kExitOk;
    }
    // The tool reports failures in its own words; the client's lines are there on request.
    hos::logger::HOSLogger::Setup(
        "HLSETTINGS", invocation->verbose ? hos::logger::LogLevel::Debug : hos::logger::LogLevel::Off,
        nullptr);
    const std::string& command = invocation->command;
    ServiceConnection connection(invocation->service, invocation->waitMs);
    if (command == "monitor") {
        // Ends with the client's full teardown: unsubscribed, and unregistered at the service.
        return RunMonitor(*invocation, connection);
    }
    int code = kExitUsage;
    if (command == "get") {
        code = RunGet(*invocation, connection);
    } else if (command == "set") {
        code = RunSet(*invocation, connection);
    } else if (command == "delete") {
        code = RunDelete(*invocation, connection);
    } else if (command == "tree") {
        code = RunTree(*invocation, connection);
    } else {
        return ReportUsage(command.empty() ? "no command given" : "unknown command '" + command + "'");
    }
    // The client's teardown would wait for its callback thread's Wait call to run out, up to 2 s on
    // every command. A one-shot command has subscribed nothing and has had its answer, so the process
    // ends here; the service sees the connections close.
    std::fflush(nullptr);
    std::_Exit(code);
}
