#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/qt_logger_support.h>

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <QtGlobal>

namespace {

using hos::logger::LogCaptureForTesting;
using hos::logger::LogLevel;

TEST(QtLoggerSupport, MapsEachMessageTypeToItsLevel) {
  EXPECT_EQ(QtLoggerSupport::LevelFromMessageType(QtDebugMsg), LogLevel::Debug);
  EXPECT_EQ(QtLoggerSupport::LevelFromMessageType(QtWarningMsg), LogLevel::Warning);
  EXPECT_EQ(QtLoggerSupport::LevelFromMessageType(QtCriticalMsg), LogLevel::Error);
  EXPECT_EQ(QtLoggerSupport::LevelFromMessageType(QtFatalMsg), LogLevel::Critical);
  EXPECT_EQ(QtLoggerSupport::LevelFromMessageType(QtInfoMsg), LogLevel::Info);
  EXPECT_EQ(QtLoggerSupport::LevelFromMessageType(static_cast<QtMsgType>(7)), LogLevel::Trace);
}

TEST(QtLoggerSupport, WritesCategoryAndMessageWithTheContextsSourceInfo) {
  LogCaptureForTesting capture;
  const QMessageLogContext context("/src/qml/Dialog.qml", 17, "void Dialog::show()", "qt.qml");
  QtLoggerSupport::MessageHandler(QtCriticalMsg, context, QStringLiteral("binding loop \u00E9"));
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].level, LogLevel::Error);
  EXPECT_EQ(records[0].message, "[qt.qml] binding loop \xC3\xA9");
  EXPECT_EQ(records[0].file, "/src/qml/Dialog.qml");
  EXPECT_EQ(records[0].line, 17);
  EXPECT_EQ(records[0].function, "void Dialog::show()");
}

TEST(QtLoggerSupport, MessageWithoutFileInfoHasEmptyFileAndFunctionAndLineZero) {
  LogCaptureForTesting capture;
  QMessageLogContext context;
  context.category = "default";
  QtLoggerSupport::MessageHandler(static_cast<QtMsgType>(7), context, QStringLiteral("odd type"));
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].level, LogLevel::Trace);
  EXPECT_EQ(records[0].file, "");
  EXPECT_EQ(records[0].function, "");
  EXPECT_EQ(records[0].line, 0);
  EXPECT_EQ(records[0].message, "[default] odd type");
}

TEST(QtLoggerSupport, DebugMessageIsDroppedAtInfoBeforeAnythingIsFormatted) {
  LogCaptureForTesting capture;
  capture.SetLevel(LogLevel::Info);
  // No category: formatting would throw, so a drop proves that nothing was formatted or converted.
  const QMessageLogContext noCategory;
  EXPECT_NO_THROW(QtLoggerSupport::MessageHandler(QtDebugMsg, noCategory, QStringLiteral("debug")));
  EXPECT_TRUE(capture.Records().empty());
  EXPECT_THROW(QtLoggerSupport::MessageHandler(QtInfoMsg, noCategory, QStringLiteral("info")), fmt::format_error);

  QMessageLogContext context;
  context.category = "default";
  QtLoggerSupport::MessageHandler(QtInfoMsg, context, QStringLiteral("info"));
  ASSERT_EQ(capture.Records().size(), 1u);
  EXPECT_EQ(capture.Records()[0].level, LogLevel::Info);
  EXPECT_EQ(capture.Count(LogLevel::Info), 1u);
}

TEST(QtLoggerSupport, InstalledHandlerReceivesQtsOwnMessages) {
  LogCaptureForTesting capture;
  const QtMessageHandler previous = qInstallMessageHandler(QtLoggerSupport::MessageHandler);
  qWarning("font %s missing", "Halcyra Sans Text");
  qInstallMessageHandler(previous);
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].level, LogLevel::Warning);
  EXPECT_EQ(records[0].message, "[default] font Halcyra Sans Text missing");
}

}  // namespace
