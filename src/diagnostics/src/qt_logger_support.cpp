#include <diagnostics/qt_logger_support.h>

#include <diagnostics/hos_logger.h>
#include <diagnostics/qstring_formatter.h>

namespace QtLoggerSupport {

using hos::logger::LogLevel;

LogLevel LevelFromMessageType(QtMsgType type) {
    switch (type) {
        case QtDebugMsg:
            return LogLevel::Debug;
        case QtWarningMsg:
            return LogLevel::Warning;
        case QtCriticalMsg:
            return LogLevel::Error;
        case QtFatalMsg:
            return LogLevel::Critical;
        case QtInfoMsg:
            return LogLevel::Info;
    }
    return LogLevel::Trace;
}

void MessageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const LogLevel level = LevelFromMessageType(type);
    auto& logger = hos::logger::HOSLogger::RootLogger();
    if (!logger.IsEnabled(level)) {
        return;
    }
    const char* file = context.file != nullptr ? context.file : "";
    const char* function = context.function != nullptr ? context.function : "";
    // Qt always names a category; a missing one makes the formatting throw, as it would for any
    // log site handed a null string.
    std::string text = fmt::format("[{}] {}", context.category, message);
    logger.LogImpl(level, file, context.line, function, text);
}

}  // namespace QtLoggerSupport
