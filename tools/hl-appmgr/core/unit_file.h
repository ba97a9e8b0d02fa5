// An application as hl-appmgr runs it, and the small key=value unit file that describes one.
//
// Unit file syntax: one "key=value" per line, split at the first '='; blank lines and lines that
// begin with '#' are ignored; spaces are not trimmed. Keys:
//   name=NAME                 the application's name, passed as argv[0] (default: program's basename)
//   program=PATH              required; looked up in PATH when it has no '/'
//   argument=TEXT             one argument; repeat for more, in order
//   environment=KEY=VALUE     one environment variable; repeat for more
//   watchdog_interval_ms=N    no Ping for this long after ReadyToShowUI means hung (default 5000)
//   restart=no|on-failure|always   (default on-failure)
//   start_limit=N             at most N starts within start_limit_interval_ms (default 5)
//   start_limit_interval_ms=N (default 60000)
//   start_timeout_ms=N        a start without ReadyToShowUI this long is failed (default 0: no limit)
//   stop_timeout_ms=N         on a stop, SIGKILL this long after SIGTERM (default 5000)
// Plain data; ParseUnit is a pure function, safe from any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hl_appmgr {

enum class RestartPolicy { No, OnFailure, Always };

struct Unit {
    std::string name;
    std::string program;
    std::vector<std::string> arguments;
    std::vector<std::pair<std::string, std::string>> environment;
    std::int64_t watchdogIntervalMs = 5000;
    RestartPolicy restart = RestartPolicy::OnFailure;
    int startLimit = 5;
    std::int64_t startLimitIntervalMs = 60000;
    std::int64_t startTimeoutMs = 0;
    std::int64_t stopTimeoutMs = 5000;
};

struct UnitParseResult {
    bool ok = false;
    Unit unit;
    std::string error;  // "line N: ..." when !ok
};

UnitParseResult ParseUnit(std::string_view text);
// The unit of "run PROGRAM ARGS...": the name is the program's basename.
Unit UnitForProgram(const std::string& program, std::vector<std::string> arguments);
std::string_view RestartPolicyName(RestartPolicy policy);

}  // namespace hl_appmgr
