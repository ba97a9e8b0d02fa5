#pragma once
// The exit codes of hl-settings and the mapping of a settings client's result code onto them.
//
//   0 success
//   1 not found: the service has no setting at the path (0x8000004C "Not found")
//   2 usage error: unknown command or option, a path or value that can't be read
//   3 the service can't be reached, or the IPC exchange with it failed (0x80000059)
//   4 the service (or the client, before sending) refused the request with another code, such as
//     0x8000004A for a write through a node that isn't the matching container
//   5 the output can't be written (a full disk, a closed pipe), or load's input can't be read
//
// Pure functions; any thread.

#include <cstdint>
#include <string>

namespace hl_settings {

enum ExitCode : int {
    kExitOk = 0,
    kExitNotFound = 1,
    kExitUsage = 2,
    kExitUnreachable = 3,
    kExitRefused = 4,
    kExitOutput = 5,
};

// The exit code for the result of a settings operation: kExitOk for a code that isn't negative.
ExitCode ExitCodeForResult(std::int32_t result);

// Writes "hl-settings: <what> '<path>': <code text>" to standard error and returns the exit code of
// result. what names the operation ("get", "set", ...); path is the path's text form ("/" is
// printed for the root's empty text).
int ReportFailure(const std::string& what, const std::string& path, std::int32_t result);

// Writes "hl-settings: <message>" and "Try 'hl-settings --help' for more information." to standard
// error; returns kExitUsage.
int ReportUsage(const std::string& message);

}  // namespace hl_settings
