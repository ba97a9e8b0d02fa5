// hl-settings: reads, writes, resets, backs up and watches settings of a settings service.
#include "commands.h"
#include "core/exit_code.h"
#include "core/invocation.h"

#include <diagnostics/hos_logger.h>
#include <hl_cli/tool.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace hl_settings;

constexpr const char* kDescription =
    "Reads, writes, deletes, resets, dumps, loads and watches the settings of a settings service.\n"
    "PATH is the settings path text, such as locale/language (a final / is optional; / is the root).\n"
    "Names may not hold / \\ \" ' ` % _ or a space; numbers (list elements) go to 65535.\n"
    "The runtime directory of the hosted platform is $HL_RUNTIME_DIR, else $XDG_RUNTIME_DIR/halcyra,\n"
    "else /tmp/halcyra-<uid>.";

constexpr const char* kTypes =
    "TYPE: none list map bool i8 i16 i32 i64 u8 u16 u32 u64 double timestamp string bytes json\n"
    "  bool true|false; integers decimal or 0x hex; bytes as hex pairs (\"de ad be ef\");\n"
    "  timestamp its 64-bit number; none, list and map take no VALUE (an empty list or map);\n"
    "  json a JSON document: object -> map, array -> list, integer -> i64, other number -> double.";

struct Command {
    CLI::App* subcommand;
    std::function<int(const Invocation&, ServiceConnection&)> run;
};

// Whether everything written to standard output reached it; says why not.
bool OutputWritten() {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) {
        return true;
    }
    std::fprintf(stderr, "hl-settings: can't write the output: %s\n", std::strerror(errno));
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    hl::cli::Tool tool("hl-settings", kDescription,
                       {{kExitOk, "success"},
                        {kExitNotFound, "not found: no setting at the path (0x8000004c)"},
                        {kExitUsage, "usage error: a bad option, path or value, or load's input is no dump"},
                        {kExitUnreachable, "the service can't be reached, the IPC with it failed, or (monitor) it went away"},
                        {kExitRefused, "the service refused the request with another code (printed in hex)"},
                        {kExitOutput, "the output can't be written, or load's input can't be read"}});
    CLI::App& app = tool.App();
    Invocation invocation;
    app.add_option("--service", invocation.service,
                   "the settings service: hl.settings_manager.MSmgr (the default, in memory), PSmgr, SecretPSmgr, "
                   "RdpPSmgr, SkalaPSmgr, WebPSmgr, UpdatePSmgr, by the short name or the full one")
        ->option_text("NAME");
    app.add_option("--wait", invocation.waitMs, "wait up to MS milliseconds for the service (default 1000)")
        ->option_text("MS");
    app.add_flag("-v,--verbose", invocation.verbose, "write the settings client's log lines to standard error");
    app.require_subcommand(0, 1);

    const auto pathOption = [&invocation](CLI::App* command, bool required) {
        command->add_option("PATH", invocation.path, required ? "the settings path" : "the settings path (default: the root)")
            ->required(required);
    };
    const auto jsonFlag = [&invocation](CLI::App* command) {
        command->add_flag("--json", invocation.json, "machine-readable output");
    };
    std::vector<Command> commands;
    const auto add = [&](const char* name, const char* help, auto run) {
        CLI::App* command = app.add_subcommand(name, help);
        command->fallthrough();
        command->footer(app.get_footer());
        commands.push_back({command, run});
        return command;
    };
    CLI::App* get = add("get", "print the value at PATH (a list or map prints as tree)", &RunGet);
    pathOption(get, true);
    jsonFlag(get);
    CLI::App* set = add("set", "write VALUE at PATH, read as --type (default string)", &RunSet);
    pathOption(set, true);
    set->add_option("VALUE", invocation.value, "the value (-- before it when it begins with a dash)");
    set->add_option("--type", invocation.type, "the type VALUE is read as")->option_text("TYPE");
    set->footer(std::string(kTypes) + "\n\n" + app.get_footer());
    CLI::App* del = add("delete", "delete PATH and everything below it", &RunDelete);
    pathOption(del, true);
    CLI::App* reset = add("reset", "put PATH back to its default, or delete it where there is none", &RunReset);
    pathOption(reset, true);
    reset->add_option("--defaults", invocation.defaults,
                      "the JSON defaults file (MSmgr: the one shipped with hl-settingsd; others have none)")
        ->option_text("FILE");
    CLI::App* tree = add("tree", "print the whole subtree at PATH", &RunTree);
    pathOption(tree, false);
    jsonFlag(tree);
    CLI::App* dump = add("dump", "print the subtree at PATH in the backup form that load reads", &RunDump);
    pathOption(dump, false);
    CLI::App* load = add("load", "replace the subtree at PATH with a dump read from standard input", &RunLoad);
    pathOption(load, false);
    CLI::App* monitor = add("monitor", "print each change at or below PATH until Ctrl-C", &RunMonitor);
    pathOption(monitor, true);
    jsonFlag(monitor);

    if (const auto status = tool.Parse(argc, argv)) {
        return *status;
    }
    const Command* chosen = nullptr;
    for (const Command& command : commands) {
        if (command.subcommand->parsed()) {
            chosen = &command;
        }
    }
    if (chosen == nullptr) {
        return tool.UsageError("no command given");
    }
    // The tool reports failures in its own words; the client's lines are there on request.
    hos::logger::HOSLogger::Setup(
        "HLSETTINGS", invocation.verbose ? hos::logger::LogLevel::Debug : hos::logger::LogLevel::Off, nullptr);
    ServiceConnection connection(invocation.service, invocation.waitMs);
    int code = chosen->run(invocation, connection);
    if (!OutputWritten() && code == kExitOk) {
        code = kExitOutput;
    }
    if (chosen->subcommand == monitor) {
        // Ends with the client's full teardown: unsubscribed, and unregistered at the service.
        return code;
    }
    // The client's teardown would wait for its callback thread's Wait call to run out, up to 2 s on
    // every command. A one-shot command has subscribed nothing and has had its answer, so the process
    // ends here; the service sees the connections close.
    std::_Exit(code);
}
