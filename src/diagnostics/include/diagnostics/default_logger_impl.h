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

// The default output: each record becomes one line written to file descriptor 2 with a single write
// call, so lines of several processes sharing the stream don't interleave. When standard error is
// the systemd journal (JOURNAL_STREAM names its device and inode, checked once here) the line is
// FormatJournalLine's, else FormatLogLine's.
std::unique_ptr<DefaultLoggerImpl> CreateStderrLoggerImpl();

// True when JOURNAL_STREAM names the device and inode of file descriptor 2. A process that hands
// its children streams of their own (hl-appmgr) asks this once, as its logger does.
bool StandardErrorIsTheJournal();

// The value of JOURNAL_STREAM that names the open descriptor fd, "DEVICE:INODE" in decimal, as
// systemd sets it and StandardErrorIsTheJournal compares it; empty when fd can't be examined.
std::string JournalStreamOf(int fd);

// The journal's form of a line: the record's syslog priority as sd-daemon(3) reads it ("<2>"
// critical, "<3>" error, "<4>" warning, "<6>" info, "<7>" debug and trace), and no time stamp, which
// the journal adds itself:
//   <4>WARNING  [ACCESSARB] 4711 src/x.cpp:42 Func: message
std::string FormatJournalLine(const LogRecord& record);

// The text of one line, ending in '\n'. The format is described in docs/logging.md:
//   2026-11-21T20:58:10.123456Z INFO  [ACCESSARB] 4711 /src/x.cpp:42 Func: message
// Line breaks and other control characters in the message are escaped ("\n", "\x01") so that a
// record always stays one line.
std::string FormatLogLine(const LogRecord& record);

}  // namespace hos::logger
