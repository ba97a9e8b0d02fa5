// Where the standard output and error of hl-appmgr's applications go.
//
// When the manager's own standard error is the journal, each start of an application gets a stream
// of its own from journald (sd_journal_stream_fd(3): the application's name as identifier, priority
// info, "<N>" prefixes read), so `journalctl -t NAME` shows that application alone, and its logger,
// seeing JOURNAL_STREAM name that stream, writes journal lines. When journald gives none, a warning
// is logged once and the applications share the manager's standard error, as they always do off the
// journal.
//
// Thread: the supervisor's, under its lock.
#pragma once

#include <string>

namespace hl_appmgr {

// One application's stream: a descriptor owned here, to become the child's 1 and 2, and the
// JOURNAL_STREAM value that names it. None (Fd() < 0) when the application shares the manager's.
class ApplicationStream {
public:
    ApplicationStream() = default;
    ApplicationStream(int fd, std::string journalStream);
    ApplicationStream(ApplicationStream&& other) noexcept;
    ApplicationStream& operator=(ApplicationStream&& other) noexcept;
    ApplicationStream(const ApplicationStream&) = delete;
    ApplicationStream& operator=(const ApplicationStream&) = delete;
    ~ApplicationStream();

    int Fd() const { return m_fd; }
    const std::string& JournalStream() const { return m_journalStream; }

private:
    int m_fd = -1;
    std::string m_journalStream;
};

class ApplicationStreams {
public:
    // `journal`: whether the manager's standard error is the journal (StandardErrorIsTheJournal).
    explicit ApplicationStreams(bool journal);

    // A new stream for one start of the application `name`, or none.
    ApplicationStream Open(const std::string& name);
    // Whether the manager's standard error is the journal.
    bool Journal() const { return m_journal; }

private:
    const bool m_journal;
    bool m_warned = false;
};

}  // namespace hl_appmgr
