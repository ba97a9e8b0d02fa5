#include "application_streams.h"

#include <diagnostics/default_logger_impl.h>
#include <diagnostics/log.h>

#include <syslog.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace hl_appmgr {

ApplicationStream::ApplicationStream(int fd, std::string journalStream)
    : m_fd(fd), m_journalStream(std::move(journalStream)) {}

ApplicationStream::ApplicationStream(ApplicationStream&& other) noexcept
    : m_fd(std::exchange(other.m_fd, -1)), m_journalStream(std::move(other.m_journalStream)) {}

ApplicationStream& ApplicationStream::operator=(ApplicationStream&& other) noexcept {
    if (this != &other) {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
        m_fd = std::exchange(other.m_fd, -1);
        m_journalStream = std::move(other.m_journalStream);
    }
    return *this;
}

ApplicationStream::~ApplicationStream() {
    if (m_fd >= 0) {
        ::close(m_fd);
    }
}

ApplicationStreams::ApplicationStreams(bool journal) : m_journal(journal) {}

ApplicationStream ApplicationStreams::Open(const std::string& name) {
    if (!m_journal) {
        return {};
    }
    const int fd = sd_journal_stream_fd(name.c_str(), LOG_INFO, 1);
    std::string journalStream = fd >= 0 ? hos::logger::JournalStreamOf(fd) : std::string();
    if (fd >= 0 && !journalStream.empty()) {
        return {fd, std::move(journalStream)};
    }
    if (!m_warned) {
        m_warned = true;
        HL_LOG(hos::logger::LogLevel::Warning,
               "no journal stream of their own for the applications ({}); they write to the manager's",
               fd < 0 ? std::strerror(-fd) : "it can't be examined");
    }
    if (fd >= 0) {
        ::close(fd);
    }
    return {};
}

}  // namespace hl_appmgr
