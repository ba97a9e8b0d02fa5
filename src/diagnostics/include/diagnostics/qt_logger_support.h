#pragma once
// Routes Qt's own messages into the root logger. Install with
// qInstallMessageHandler(QtLoggerSupport::MessageHandler); the handler may run on any thread.

#include <diagnostics/log_level.h>

#include <QString>
#include <QtGlobal>

namespace QtLoggerSupport {

// QtDebugMsg -> Debug, QtWarningMsg -> Warning, QtCriticalMsg -> Error, QtFatalMsg -> Critical,
// QtInfoMsg -> Info, anything else -> Trace.
hos::logger::LogLevel LevelFromMessageType(QtMsgType type);

// Writes "[category] message" at the mapped level with the context's file, line and function, or
// nothing if the level is disabled (then the message isn't even converted). Doesn't end the
// process on QtFatalMsg: Qt does that itself after the handler returns.
void MessageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message);

}  // namespace QtLoggerSupport
