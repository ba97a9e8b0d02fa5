#pragma once
// One log line before it is rendered: what a log site handed over, plus when, where and by whom.

#include <diagnostics/log_level.h>

#include <chrono>
#include <cstdint>
#include <string>

namespace hos::logger {

struct LogRecord {
    LogLevel level = LogLevel::Info;
    std::string file;
    int line = 0;
    std::string function;
    std::string message;
    std::string tag;
    std::uint64_t threadId = 0;
    std::chrono::system_clock::time_point time;
};

}  // namespace hos::logger
