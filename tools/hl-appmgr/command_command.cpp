// hl-appmgr command: hands a command to the running manager through its command box.
#include <signal.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "commands.h"
#include "core/command_box.h"
#include "core/status_table.h"

namespace hl_appmgr {

namespace {

constexpr const char* kHelp =
    "Usage: hl-appmgr command APP NAME VALUE\n"
    "\n"
    "Sets the command NAME (at most 128 bytes) to the integer VALUE and raises the update event\n"
    "(bit 16) on the update handle that APP got from GetUpdateHandle; APP then reads the value with\n"
    "GetCommand(NAME). The running manager takes the command from <runtime directory>/appmgr/commands/\n"
    "within 100 ms.\n"
    "\n"
    "Exit codes: 0 handed over; 1 usage error; 3 no hl-appmgr is running; 4 the command can't be written.\n";

}  // namespace

int RunCommand(const std::vector<std::string>& arguments) {
    if (!arguments.empty() && (arguments[0] == "--help" || arguments[0] == "-h")) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (arguments.size() != 3) {
        std::fprintf(stderr, "hl-appmgr command: expected APP NAME VALUE\n\n%s", kHelp);
        return 1;
    }
    Command command{arguments[0], arguments[1], 0};
    // The serialized form doubles as the check of the three fields.
    const auto checked = ParseCommand(command.app + "\n" + command.name + "\n" + arguments[2] + "\n");
    if (!checked) {
        std::fprintf(stderr,
                     "hl-appmgr command: APP and NAME must be one line each (NAME at most 128 bytes), "
                     "VALUE a 64-bit integer\n");
        return 1;
    }
    std::ifstream in(StatusFilePath(false));
    std::stringstream text;
    text << in.rdbuf();
    const auto table = in ? ParseStatus(text.str()) : std::nullopt;
    if (!table || (::kill(static_cast<pid_t>(table->managerPid), 0) != 0 && errno == ESRCH)) {
        std::fprintf(stderr, "hl-appmgr command: no hl-appmgr is running\n");
        return 3;
    }
    std::string error;
    if (!PostCommand(*checked, &error)) {
        std::fprintf(stderr, "hl-appmgr command: %s\n", error.c_str());
        return 4;
    }
    return 0;
}

}  // namespace hl_appmgr
