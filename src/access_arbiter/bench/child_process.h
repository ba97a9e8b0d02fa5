// Starting the benchmark's child processes (hl-appmgr, hl-settingsd, zenity) with their output where
// the benchmark wants it.
//
// Thread: any; the caller owns the process it started (kills and reaps it) and the pipe end it got.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace access_arbiter::bench {

enum class ChildOutput {
    kNone,             // standard output and error to /dev/null
    kStdout,           // standard output to the pipe, standard error to /dev/null
    kStdoutAndStderr,  // both to the pipe
};

// Starts `program` (looked up on PATH when it holds no slash) with `arguments`, argv[0] first. Unless
// `output` is kNone, `readEnd` receives the read end of the pipe (close-on-exec). False with `error`
// when the pipe or the process can't be made.
bool SpawnChild(const std::string& program, std::vector<std::string> arguments, ChildOutput output,
                pid_t& pid, int& readEnd, std::string& error);

}  // namespace access_arbiter::bench
