#pragma once
// The process's root logger.
//
// Setup is called once at start (tag "ACCESSARB", level Info); before it the logger writes with the
// tag "HL" at level Info. RootLogger may be called from any thread; IsEnabled, LogImpl and Log are
// thread-safe, and each LogImpl call writes exactly one line. Log sites use HL_LOG (log.h), which
// asks IsEnabled before anything is formatted.

#include <diagnostics/default_logger_impl.h>
#include <diagnostics/log_level.h>

#include <fmt/format.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

namespace hos::logger {

class HOSLogger {
public:
    // Sets tag and level of the root logger. An empty impl selects the standard error output.
    static void Setup(const char* tag, LogLevel level, std::unique_ptr<DefaultLoggerImpl> impl);
    static HOSLogger& RootLogger();

    HOSLogger(const HOSLogger&) = delete;
    HOSLogger& operator=(const HOSLogger&) = delete;
    virtual ~HOSLogger();

    // True when a line of this level would be written: level is not Off and not below the logger's.
    virtual bool IsEnabled(LogLevel level) const;

    // Writes one line, whatever the level. The message may be moved from.
    void LogImpl(LogLevel level, const char* file, int line, const char* function, std::string& message);

    // Formats args into format with the fmt rules and passes the text to LogImpl. Doesn't test the
    // level: the caller has done that. A bad format throws fmt::format_error.
    template <typename... Args>
    void Log(LogLevel level, const char* file, int line, const char* function, fmt::string_view format,
             Args&&... args) {
        std::string message = fmt::vformat(format, fmt::make_format_args(args...));
        LogImpl(level, file, line, function, message);
    }

    LogLevel Level() const;
    void SetLevel(LogLevel level);
    std::string Tag() const;

    // While set, every line goes to sink instead of the configured output, also across Setup.
    // Returns the sink set before. The caller keeps sink alive until it is replaced.
    DefaultLoggerImpl* SetCaptureSinkForTesting(DefaultLoggerImpl* sink);

private:
    HOSLogger();

    std::atomic<LogLevel> m_level{LogLevel::Info};
    mutable std::mutex m_mutex;  // guards everything below, and serialises the writes
    std::string m_tag;
    std::unique_ptr<DefaultLoggerImpl> m_impl;
    DefaultLoggerImpl* m_captureSink = nullptr;
};

}  // namespace hos::logger
