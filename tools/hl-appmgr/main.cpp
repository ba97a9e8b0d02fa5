// hl-appmgr: the application manager of the hosted platform.
#include <diagnostics/hos_logger.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"

namespace {

constexpr const char* kUsage =
    "Usage: hl-appmgr COMMAND [ARGS...]\n"
    "\n"
    "Commands:\n"
    "  run      start applications and supervise them; serves the application manager's interfaces\n"
    "  status   show each application's state, pid, time since its last Ping and restart count\n"
    "  command  set a command of an application and raise its update event\n"
    "\n"
    "Run 'hl-appmgr COMMAND --help' for the arguments of a command.\n"
    "The runtime directory is $HL_RUNTIME_DIR, else $XDG_RUNTIME_DIR/halcyra, else /tmp/halcyra-<uid>;\n"
    "the manager keeps its state file and command box in its subdirectory appmgr/.\n"
    "\n"
    "Exit codes: 0 success; 1 usage error; others as the command's help says.\n";

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        std::fputs(kUsage, argc < 2 ? stderr : stdout);
        return argc < 2 ? 1 : 0;
    }
    hos::logger::HOSLogger::Setup("APPMGR", hos::logger::LogLevel::Info, nullptr);
    const std::string command = argv[1];
    const std::vector<std::string> arguments(argv + 2, argv + argc);
    if (command == "run") {
        return hl_appmgr::RunRun(arguments);
    }
    if (command == "status") {
        return hl_appmgr::RunStatus(arguments);
    }
    if (command == "command") {
        return hl_appmgr::RunCommand(arguments);
    }
    std::fprintf(stderr, "hl-appmgr: unknown command '%s'\n\n%s", command.c_str(), kUsage);
    return 1;
}
