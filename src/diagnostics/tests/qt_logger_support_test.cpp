#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/qt_logger_support.h>

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <QtGlobal>

#include <utility>

namespace {

using hos::logger::LogCaptureForTesting;
using hos::logger::LogLevel;

TEST(QtLoggerSupport, WritesEachMessageTypeAtItsLevelWithTheContextsSourceInfo) {
    const std::pair<int, LogLevel> levels[] = {
        {QtDebugMsg, LogLevel::Debug},    {QtInfoMsg, LogLevel::Info},      {QtWarningMsg, LogLevel::Warning},
        {QtCriticalMsg, LogLevel::Error}, {QtFatalMsg, LogLevel::Critical}, {7, LogLevel::Trace}};
    for (const auto& [type, level] : levels) {
        EXPECT_EQ(QtLoggerSupport::LevelFromMessageType(static_cast<QtMsgType>(type)), level) << type;
    }
    LogCaptureForTesting capture;
    const QMessageLogContext withInfo("/src/qml/Dialog.qml", 17, "void Dialog::show()", "qt.qml");
    QtLoggerSupport::MessageHandler(QtCriticalMsg, withInfo, QStringLiteral("binding loop \u00E9"));
    const QMessageLogContext withoutInfo(nullptr, 0, nullptr, "default");
    QtLoggerSupport::MessageHandler(static_cast<QtMsgType>(7), withoutInfo, QStringLiteral("odd type"));
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].level, LogLevel::Error);
    EXPECT_EQ(records[0].message, "[qt.qml] binding loop \xC3\xA9");
    EXPECT_EQ(records[0].file, "/src/qml/Dialog.qml");
    EXPECT_EQ(records[0].line, 17);
    EXPECT_EQ(records[0].function, "void Dialog::show()");
    EXPECT_EQ(records[1].level, LogLevel::Trace);
    EXPECT_EQ(records[1].message, "[default] odd type");
    EXPECT_EQ(records[1].file, "");
    EXPECT_EQ(records[1].line, 0);
    EXPECT_EQ(records[1].function, "");
}

TEST(QtLoggerSupport, DebugMessageIsDroppedAtInfoBeforeAnythingIsFormatted) {
    LogCaptureForTesting capture;
    capture.SetLevel(LogLevel::Info);
    // No category: formatting would throw, so a drop proves that nothing was formatted or converted.
    const QMessageLogContext noCategory;
    EXPECT_NO_THROW(QtLoggerSupport::MessageHandler(QtDebugMsg, noCategory, QStringLiteral("debug")));
    EXPECT_TRUE(capture.Records().empty());
    EXPECT_THROW(QtLoggerSupport::MessageHandler(QtInfoMsg, noCategory, QStringLiteral("info")),
                 fmt::format_error);
}

}  // namespace
