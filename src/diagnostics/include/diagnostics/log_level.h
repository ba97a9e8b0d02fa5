#pragma once
// Severity of a log line, in rising order. Off is used only as a logger or tracer level that
// writes nothing; no line is ever written at Off.

#include <cstdint>
#include <string_view>

namespace hos::logger {

enum class LogLevel : std::int32_t {
    Trace = 0,
    Debug = 1,
    Info = 2,
    Warning = 3,
    Error = 4,
    Critical = 5,
    Off = 6,
};

// Upper-case name as it appears in a log line ("TRACE" ... "OFF"); "LEVEL(n)" for a value outside
// the enumeration.
std::string_view LogLevelName(LogLevel level);

}  // namespace hos::logger
