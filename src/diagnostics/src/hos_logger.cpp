#include <diagnostics/hos_logger.h>

#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>

namespace hos::logger {
namespace {

constexpr const char* kDefaultTag = "HL";

std::uint64_t CurrentThreadId() {
    return static_cast<std::uint64_t>(::syscall(SYS_gettid));
}

}  // namespace

HOSLogger::HOSLogger() : m_tag(kDefaultTag) {}

HOSLogger::~HOSLogger() = default;

void HOSLogger::Setup(const char* tag, LogLevel level, std::unique_ptr<DefaultLoggerImpl> impl) {
    HOSLogger& logger = RootLogger();
    std::lock_guard lock(logger.m_mutex);
    logger.m_tag = tag != nullptr ? tag : "";
    logger.m_impl = std::move(impl);
    logger.m_level.store(level, std::memory_order_relaxed);
}

HOSLogger& HOSLogger::RootLogger() {
    // Never destroyed, so that log sites in static destructors and late threads stay safe.
    static HOSLogger* const root = new HOSLogger();
    return *root;
}

bool HOSLogger::IsEnabled(LogLevel level) const {
    return level != LogLevel::Off && level >= m_level.load(std::memory_order_relaxed);
}

void HOSLogger::LogImpl(LogLevel level, const char* file, int line, const char* function,
                        std::string& message) {
    LogRecord record;
    record.level = level;
    record.file = file != nullptr ? file : "";
    record.line = line;
    record.function = function != nullptr ? function : "";
    record.message = std::move(message);
    record.threadId = CurrentThreadId();
    record.time = std::chrono::system_clock::now();

    std::lock_guard lock(m_mutex);
    record.tag = m_tag;
    if (m_captureSink != nullptr) {
        m_captureSink->Write(record);
        return;
    }
    if (!m_impl) {
        m_impl = CreateStderrLoggerImpl();
    }
    m_impl->Write(record);
}

LogLevel HOSLogger::Level() const {
    return m_level.load(std::memory_order_relaxed);
}

void HOSLogger::SetLevel(LogLevel level) {
    m_level.store(level, std::memory_order_relaxed);
}

std::string HOSLogger::Tag() const {
    std::lock_guard lock(m_mutex);
    return m_tag;
}

DefaultLoggerImpl* HOSLogger::SetCaptureSinkForTesting(DefaultLoggerImpl* sink) {
    std::lock_guard lock(m_mutex);
    DefaultLoggerImpl* previous = m_captureSink;
    m_captureSink = sink;
    return previous;
}

}  // namespace hos::logger
