// hl-ipc: a look into the hosted platform from the command line.
#include <hl_cli/tool.h>

#include <vector>

#include "commands.h"

namespace {

constexpr const char* kDescription =
    "Lists what the runtime directory publishes and the interfaces the IPC runtime describes, and calls\n"
    "the services found there by method name with JSON, or with raw bytes.\n"
    "The runtime directory is $HL_RUNTIME_DIR, else $XDG_RUNTIME_DIR/halcyra, else /tmp/halcyra-<uid>.";

}  // namespace

int main(int argc, char** argv) {
    hl::cli::Tool tool("hl-ipc", kDescription,
                       {{hl_ipc::kExitOk, "success (list: also when nothing is published)"},
                        {hl::cli::kExitUsage, "usage error"},
                        {hl_ipc::kExitConnect, "call: the server or service can't be reached (0x90000013: no such server)"},
                        {hl_ipc::kExitCall, "call: the call failed on the way (0xfffffff5: timed out)"},
                        {hl_ipc::kExitServerFailed, "call: the server failed the request (its failure flag is set)"},
                        {hl_ipc::kExitUnknownInterface, "introspect: no described interface is named by TYPE"}});
    tool.App().require_subcommand(0, 1);
    const std::vector<hl_ipc::Command> commands{hl_ipc::AddList(tool.App()), hl_ipc::AddCall(tool.App()),
                                                 hl_ipc::AddIntrospect(tool.App())};
    if (const auto status = tool.Parse(argc, argv)) {
        return *status;
    }
    for (const auto& command : commands) {
        if (command.subcommand->parsed()) {
            return command.run();
        }
    }
    return tool.UsageError("no command given");
}
