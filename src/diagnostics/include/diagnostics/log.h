#pragma once
// The guarded log site. Every log statement of the program has this form:
//
//   HL_LOG(hos::logger::LogLevel::Info, "Decision {} received", value);
//
// The root logger is asked first whether the level is enabled; only then are the arguments
// formatted (fmt syntax) and handed over with the source file, line and bare function name.

#include <diagnostics/hos_logger.h>
#include <diagnostics/log_level.h>

#define HL_LOG(level, ...) HL_LOG_FOR((level), __func__, __VA_ARGS__)

// The same for a shared path that logs on behalf of the operation that called it: `function` (a
// C string, usually the caller's __func__) is handed over as the record's function name.
#define HL_LOG_FOR(level, function, ...)                                                                     \
    do {                                                                                                     \
        auto& hlRootLogger_ = ::hos::logger::HOSLogger::RootLogger();                                        \
        if (hlRootLogger_.IsEnabled(level)) {                                                                \
            hlRootLogger_.Log((level), __FILE__, __LINE__, static_cast<const char*>(function), __VA_ARGS__); \
        }                                                                                                    \
    } while (false)
