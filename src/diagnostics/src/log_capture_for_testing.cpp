#include <diagnostics/log_capture_for_testing.h>

#include <diagnostics/hos_logger.h>

#include <algorithm>
#include <mutex>

namespace hos::logger {

class LogCaptureForTesting::MemorySink final : public DefaultLoggerImpl {
public:
    void Write(const LogRecord& record) override {
        std::lock_guard lock(m_mutex);
        m_records.push_back(record);
    }

    std::vector<LogRecord> Records() const {
        std::lock_guard lock(m_mutex);
        return m_records;
    }

    void Clear() {
        std::lock_guard lock(m_mutex);
        m_records.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<LogRecord> m_records;
};

LogCaptureForTesting::LogCaptureForTesting() : m_sink(std::make_unique<MemorySink>()) {
    HOSLogger& logger = HOSLogger::RootLogger();
    m_previousLevel = logger.Level();
    m_previousSink = logger.SetCaptureSinkForTesting(m_sink.get());
    logger.SetLevel(LogLevel::Trace);
}

LogCaptureForTesting::~LogCaptureForTesting() {
    HOSLogger& logger = HOSLogger::RootLogger();
    logger.SetCaptureSinkForTesting(m_previousSink);
    logger.SetLevel(m_previousLevel);
}

void LogCaptureForTesting::SetLevel(LogLevel level) {
    HOSLogger::RootLogger().SetLevel(level);
}

std::vector<LogRecord> LogCaptureForTesting::Records() const {
    return m_sink->Records();
}

bool LogCaptureForTesting::Contains(std::string_view text) const {
    const auto records = m_sink->Records();
    return std::any_of(records.begin(), records.end(), [text](const LogRecord& record) {
        return record.message.find(text) != std::string::npos;
    });
}

std::size_t LogCaptureForTesting::Count(LogLevel level) const {
    const auto records = m_sink->Records();
    return static_cast<std::size_t>(std::count_if(
        records.begin(), records.end(), [level](const LogRecord& record) { return record.level == level; }));
}

void LogCaptureForTesting::Clear() {
    m_sink->Clear();
}

}  // namespace hos::logger
