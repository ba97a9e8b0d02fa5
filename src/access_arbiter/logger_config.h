#pragma once

// The level the root logger is set up with at start. Compiled in: the program has no options.
// Read once during start-up on the Qt main thread; nothing changes it while the program runs.

#include <diagnostics/log.h>

namespace access_arbiter::config::logger::impl {

extern hos::logger::LogLevel logLevel;

}  // namespace access_arbiter::config::logger::impl
