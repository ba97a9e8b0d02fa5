// The subcommands of hl-appmgr, each added to the command line (hl::cli::Tool) by its own Add
// function, which returns the action to run once the command line is parsed; it returns the exit code.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace hl_appmgr {

// The tool's exit codes (the table is in main.cpp and docs/tools.md).
inline constexpr int kExitFailed = 1;        // no manager answers, or it refused or failed the request
inline constexpr int kExitNotActive = 3;     // status, is-active: an application is not active
inline constexpr int kExitNoSuchApplication = 4;

using Action = std::function<int()>;

// run: the manager itself.
Action AddRun(CLI::App& app);
// start, stop, restart, reset-failed, status, is-active, command: requests to the running manager
// over its control interface. `action` receives the subcommand's action.
void AddControlCommands(CLI::App& app, Action& action);

}  // namespace hl_appmgr
