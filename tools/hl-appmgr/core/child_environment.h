// The environment an application of hl-appmgr starts with.
//
// It is the manager's own, less what systemd meant for the manager alone: NOTIFY_SOCKET,
// WATCHDOG_USEC and WATCHDOG_PID (an application that notified on them would speak for the manager's
// service). JOURNAL_STREAM is replaced by the application's own stream when it has one, so that its
// logger writes journal lines to it. The unit's environment= lines come last and win.
// Pure; the supervisor builds it before fork, so the child only points `environ` at it and execs.
#pragma once

#include <string>
#include <vector>

#include "unit_file.h"

namespace hl_appmgr {

// `parent` is a null-terminated KEY=VALUE array such as `environ`; `journalStream` the
// "DEVICE:INODE" of the application's journal stream, or empty when it shares the manager's
// standard error (then JOURNAL_STREAM is passed on as it is).
std::vector<std::string> ChildEnvironment(const char* const* parent, const Unit& unit,
                                          const std::string& journalStream);

}  // namespace hl_appmgr
