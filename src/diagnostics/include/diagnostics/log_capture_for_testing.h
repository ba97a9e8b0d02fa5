#pragma once
// Test helper: while an object of this class lives, the root logger's lines go to memory instead of
// its output, and the root logger is at level Trace (SetLevel filters as the real logger would).
// The destructor restores the previous output and level. Create and destroy on one thread; the
// accessors may be called from any thread.

#include <diagnostics/default_logger_impl.h>
#include <diagnostics/log_level.h>
#include <diagnostics/log_record.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace hos::logger {

class LogCaptureForTesting {
public:
    LogCaptureForTesting();
    ~LogCaptureForTesting();
    LogCaptureForTesting(const LogCaptureForTesting&) = delete;
    LogCaptureForTesting& operator=(const LogCaptureForTesting&) = delete;

    void SetLevel(LogLevel level);

    std::vector<LogRecord> Records() const;
    // True when the message of any record contains text.
    bool Contains(std::string_view text) const;
    std::size_t Count(LogLevel level) const;
    void Clear();

private:
    class MemorySink;

    std::unique_ptr<MemorySink> m_sink;
    DefaultLoggerImpl* m_previousSink = nullptr;
    LogLevel m_previousLevel = LogLevel::Info;
};

}  // namespace hos::logger
