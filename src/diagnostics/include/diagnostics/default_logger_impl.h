#pragma once
// The output of the root logger: receives finished records, one call per line.
//
// Thread: Write is called with the root logger's lock held, so an implementation sees one call at
// a time and needs no lock of its own for the logger's sake.

#include <diagnostics/log_record.h>

#include <memory>
#include <string>

namespace hos::logger {

class DefaultLoggerImpl {
public:
    virtual ~DefaultLoggerImpl() = default;
    virtual void Write(const LogRecord& record) = 0;
};

// The default output: each record becomes one line (FormatLogLine) written to file descriptor 2
// with a single write call, so lines of several processes sharing the stream don't interleave.
std::unique_ptr<DefaultLoggerImpl> CreateStderrLoggerImpl();

// The text of one line, ending in '\n'. The format is described in docs/logging.md:
//   2026-11-21T20:58:10.123456Z INFO  [ACCESSARB] 4711 /src/x.cpp:42 Func: message
// Line breaks and other control characters in the message are escaped ("\n", "\x01") so that a
// record always stays one line.
std::string FormatLogLine(const LogRecord& record);

}  // namespace hos::logger
