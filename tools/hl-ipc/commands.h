#pragma once
// The subcommands of hl-ipc, one file each: each adds its subcommand, with its options, to the
// tool's parser and returns it with what main runs when that subcommand was chosen. Main thread only.

#include <CLI/CLI.hpp>

#include <functional>

namespace hl_ipc {

// The exit codes of hl-ipc (2 is the core's usage error).
enum ExitCode : int {
    kExitOk = 0,
    kExitConnect = 3,        // no such server or service, or the connect failed
    kExitCall = 4,           // the call failed on the way (timed out, channel closed)
    kExitServerFailed = 5,   // the server answered with its failure flag set
    kExitUnknownInterface = 6,  // introspect: no described interface of that name
};

// A subcommand in the parser and what runs when it was chosen (its exit code).
struct Command {
    CLI::App* subcommand;
    std::function<int()> run;
};

Command AddList(CLI::App& app);
Command AddCall(CLI::App& app);
Command AddIntrospect(CLI::App& app);

}  // namespace hl_ipc
