// Resident memory of a process as the kernel reports it (VmRSS of /proc/PID/status).
#pragma once

#include <sys/types.h>

#include <optional>

namespace access_arbiter::bench {

// VmRSS of `pid` in MiB; empty when the process is gone or the line is missing.
std::optional<double> ResidentMiB(pid_t pid);

}  // namespace access_arbiter::bench
