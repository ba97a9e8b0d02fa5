#include <diagnostics/tracer.h>

#include <exception>

namespace trace {

using hos::logger::HOSLogger;
using hos::logger::LogLevel;

namespace {
constexpr const char* kTracerFile = "component/logger/tracer";
constexpr const char* kTracerFunction = "LogImpl";
}  // namespace

Tracer::~Tracer() {
    if (m_level == LogLevel::Off || !HOSLogger::RootLogger().IsEnabled(m_level)) {
        return;
    }
    try {
        std::string scratch;
        // An empty postfix throws std::bad_function_call: a programming error, reported below.
        const std::string_view last = m_postfix(scratch);
        LogImpl(m_level, last);
    } catch (const std::exception& e) {
        HL_LOG(LogLevel::Error, "{} exception: {}", "~Tracer", e.what());
    } catch (...) {
        // A destructor must not throw.
        std::terminate();
    }
}

std::string_view Tracer::NoPostfix(std::string& /*scratch*/) {
    return {};
}

void Tracer::RaiseLevel(LogLevel level) {
    if (level > m_level) {
        m_level = level;
    }
}

void Tracer::WriteLine(LogLevel level, const std::string_view* message) const {
    HOSLogger& logger = HOSLogger::RootLogger();
    if (!logger.IsEnabled(level)) {
        return;
    }
    if (message != nullptr) {
        logger.Log(level, kTracerFile, __LINE__, kTracerFunction, "{}{}({}): {}{}", m_tag, m_method, m_args,
                   m_result, *message);
    } else if (!m_result.empty()) {
        logger.Log(level, kTracerFile, __LINE__, kTracerFunction, "{}{}({}): {}", m_tag, m_method, m_args,
                   m_result);
    } else {
        logger.Log(level, kTracerFile, __LINE__, kTracerFunction, "{}{}({})", m_tag, m_method, m_args);
    }
}

}  // namespace trace
