// hl-ipc: a look into the hosted platform from the command line.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"

namespace {

constexpr const char* kUsage =
    "Usage: hl-ipc COMMAND [ARGS...]\n"
    "\n"
    "Commands:\n"
    "  list    show the published types and the servers of the runtime directory\n"
    "  call    send one raw request to a server and print the response\n"
    "\n"
    "Run 'hl-ipc COMMAND --help' for the arguments of a command.\n"
    "The runtime directory is $HL_RUNTIME_DIR, else $XDG_RUNTIME_DIR/halcyra,\n"
    "else /tmp/halcyra-<uid>.\n"
    "\n"
    "Exit codes: 0 success; 1 usage error; others as the command's help says.\n";

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        std::fputs(kUsage, argc < 2 ? stderr : stdout);
        return argc < 2 ? 1 : 0;
    }
    const std::string command = argv[1];
    const std::vector<std::string> arguments(argv + 2, argv + argc);
    if (command == "list") {
        return hl_ipc::RunList(arguments);
    }
    if (command == "call") {
        return hl_ipc::RunCall(arguments);
    }
    std::fprintf(stderr, "hl-ipc: unknown command '%s'\n\n%s", command.c_str(), kUsage);
    return 1;
}
