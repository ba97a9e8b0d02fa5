#include <diagnostics/default_logger_impl.h>

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <iterator>

namespace hos::logger {
namespace {

class StderrLoggerImpl final : public DefaultLoggerImpl {
public:
    explicit StderrLoggerImpl(bool journal) : m_journal(journal) {}

    void Write(const LogRecord& record) override {
        const std::string line = m_journal ? FormatJournalLine(record) : FormatLogLine(record);
        const char* data = line.data();
        std::size_t left = line.size();
        while (left > 0) {
            const ssize_t written = ::write(STDERR_FILENO, data, left);
            if (written < 0 && errno == EINTR) {
                continue;
            }
            if (written <= 0) {
                return;  // logging never reports failure
            }
            data += written;
            left -= static_cast<std::size_t>(written);
        }
    }

private:
    const bool m_journal;
};

// The syslog priority that sd-daemon(3) reads from a "<N>" prefix.
int JournalPriority(LogLevel level) {
    switch (level) {
        case LogLevel::Critical:
            return 2;
        case LogLevel::Error:
            return 3;
        case LogLevel::Warning:
            return 4;
        case LogLevel::Info:
            return 6;
        default:
            return 7;
    }
}

void AppendEscaped(std::string& out, std::string_view text) {
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\t') {
            out += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            out += fmt::format("\\x{:02x}", byte);
        } else {
            out += c;
        }
    }
}

// What both forms of a line share after their prefix: level, tag, thread, source, function and the
// escaped message, with the line's end.
void AppendRecord(std::string& line, const LogRecord& record) {
    fmt::format_to(std::back_inserter(line), "{:<8} [{}] {} {}:{} {}: ", LogLevelName(record.level),
                   record.tag, record.threadId, record.file, record.line, record.function);
    AppendEscaped(line, record.message);
    line += '\n';
}

}  // namespace

bool StandardErrorIsTheJournal() {
    // systemd sets JOURNAL_STREAM to "DEVICE:INODE" of the stream it connects to standard error; a
    // process whose standard error was redirected since has another one.
    const char* stream = std::getenv("JOURNAL_STREAM");
    if (stream == nullptr) {
        return false;
    }
    const std::string own = JournalStreamOf(STDERR_FILENO);
    return !own.empty() && own == stream;
}

std::string JournalStreamOf(int fd) {
    struct stat status {};
    if (::fstat(fd, &status) != 0) {
        return {};
    }
    return fmt::format("{}:{}", status.st_dev, status.st_ino);
}

std::unique_ptr<DefaultLoggerImpl> CreateStderrLoggerImpl() {
    return std::make_unique<StderrLoggerImpl>(StandardErrorIsTheJournal());
}

std::string FormatJournalLine(const LogRecord& record) {
    std::string line = fmt::format("<{}>", JournalPriority(record.level));
    AppendRecord(line, record);
    return line;
}

std::string FormatLogLine(const LogRecord& record) {
    const auto sinceEpoch = record.time.time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch);
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(sinceEpoch - seconds);
    const std::time_t time = static_cast<std::time_t>(seconds.count());
    std::tm utc{};
    ::gmtime_r(&time, &utc);
    char stamp[32];
    std::strftime(stamp, sizeof(stamp), "%Y-%m-%dT%H:%M:%S", &utc);

    std::string line = fmt::format("{}.{:06d}Z ", stamp, micros.count());
    AppendRecord(line, record);
    return line;
}

}  // namespace hos::logger
