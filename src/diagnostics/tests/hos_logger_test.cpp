#include <diagnostics/default_logger_impl.h>
#include <diagnostics/hos_logger.h>
#include <diagnostics/log.h>
#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/qstring_formatter.h>

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace {

using hos::logger::HOSLogger;
using hos::logger::LogCaptureForTesting;
using hos::logger::LogLevel;
using hos::logger::LogRecord;

// Puts the root logger back into its state before Setup when a test that calls Setup ends.
struct DefaultSetupRestorer {
    ~DefaultSetupRestorer() { HOSLogger::Setup("HL", LogLevel::Info, nullptr); }
};

TEST(HlLog, HandsOverLevelFileLineBareFunctionAndFormattedText) {
    LogCaptureForTesting capture;
    const int line = __LINE__ + 1;
    HL_LOG(LogLevel::Error, "code={}, '{}' {:16X} '{:>6}'", -5, "boom", 0xBEEFu, QString::fromUtf8("de"));
    [] { HL_LOG(LogLevel::Info, "in a lambda"); }();
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].level, LogLevel::Error);
    EXPECT_EQ(records[0].file, __FILE__);
    EXPECT_EQ(records[0].line, line);
    EXPECT_EQ(records[0].function, "TestBody");
    EXPECT_EQ(records[0].message, "code=-5, 'boom'             BEEF '    de'");
    EXPECT_EQ(records[1].function, "operator()");
    EXPECT_THROW(HL_LOG(LogLevel::Info, "missing {} {}", 1), fmt::format_error);
}

// Each test case runs in a process of its own, so this one sees the logger before any Setup.
TEST(HlLog, DisabledLevelRendersNoArgumentsAndOffIsNeverEnabled) {
    EXPECT_EQ(HOSLogger::RootLogger().Tag(), "HL");
    EXPECT_EQ(HOSLogger::RootLogger().Level(), LogLevel::Info);
    LogCaptureForTesting capture;
    int rendered = 0;
    const auto render = [&rendered] { return ++rendered; };
    HL_LOG(LogLevel::Off, "value {}", render());
    capture.SetLevel(LogLevel::Info);
    HL_LOG(LogLevel::Debug, "value {}", render());
    EXPECT_EQ(rendered, 0);
    HL_LOG(LogLevel::Warning, "value {}", render());
    EXPECT_EQ(rendered, 1);
    EXPECT_EQ(capture.Count(LogLevel::Warning), 1u);
}

struct CollectingImpl : hos::logger::DefaultLoggerImpl {
    explicit CollectingImpl(std::vector<LogRecord>* out) : m_out(out) {}
    void Write(const LogRecord& record) override { m_out->push_back(record); }
    std::vector<LogRecord>* m_out;
};

TEST(HOSLogger, SetupRoutesTaggedLinesOfEnabledLevelsToItsImplWhileLogImplIgnoresTheLevel) {
    std::vector<LogRecord> written;
    DefaultSetupRestorer restorer;  // declared after written: the impl goes before the vector
    HOSLogger::Setup("TAG", LogLevel::Debug, std::make_unique<CollectingImpl>(&written));
    HL_LOG(LogLevel::Debug, "to the impl {}", 1);
    HL_LOG(LogLevel::Trace, "filtered");
    std::string raw = "raw {}";
    HOSLogger::RootLogger().LogImpl(LogLevel::Trace, nullptr, 3, nullptr, raw);
    ASSERT_EQ(written.size(), 2u);
    EXPECT_EQ(written[0].message, "to the impl 1");
    EXPECT_EQ(written[0].tag, "TAG");
    EXPECT_EQ(written[1].message, "raw {}");
    EXPECT_EQ(written[1].file, "");
}

TEST(HOSLogger, ConcurrentLogSitesLoseNoLineAndKeepEachThreadsOrder) {
    LogCaptureForTesting capture;
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([t] {
                for (int i = 0; i < 200; ++i) {
                    HL_LOG(LogLevel::Info, "{} {}", t, i);
                }
            });
        }
    }
    int next[4] = {};
    for (const auto& record : capture.Records()) {
        const std::size_t space = record.message.find(' ');
        ASSERT_EQ(std::stoi(record.message.substr(space)), next[std::stoi(record.message) % 4]++);
    }
    EXPECT_EQ(std::vector<int>(next, next + 4), std::vector<int>(4, 200));
}

TEST(HOSLogger, DefaultOutputWritesOneWellFormedEscapedLineToStandardError) {
    DefaultSetupRestorer restorer;
    HOSLogger::Setup("ACCESSARB", LogLevel::Info, nullptr);
    testing::internal::CaptureStderr();
    HL_LOG(LogLevel::Warning, "Decision {} received\n\tend \x01", 1);
    HL_LOG(LogLevel::Debug, "filtered");
    const std::string text = testing::internal::GetCapturedStderr();
    const std::regex line(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z WARNING  \[ACCESSARB\] \d+ )"
                          R"(\S*hos_logger_test\.cpp:\d+ TestBody: Decision 1 received\\n\\tend \\x01\n)");
    EXPECT_TRUE(std::regex_match(text, line)) << text;
}

// Under systemd, standard error is a stream socket to the journal that JOURNAL_STREAM names by its
// device and inode: lines then carry their priority for the journal and no time stamp of their own.
TEST(HOSLogger, OnTheJournalsStreamLinesCarryTheirPriorityAndNoTimeStamp) {
    int journal[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, journal), 0);
    const int savedStderr = dup(STDERR_FILENO);
    ASSERT_GE(dup2(journal[0], STDERR_FILENO), 0);
    struct stat stream {};
    fstat(STDERR_FILENO, &stream);
    setenv("JOURNAL_STREAM", fmt::format("{}:{}", stream.st_dev, stream.st_ino).c_str(), 1);
    EXPECT_TRUE(hos::logger::StandardErrorIsTheJournal());
    {
        DefaultSetupRestorer restorer;
        HOSLogger::Setup("ACCESSARB", LogLevel::Info, nullptr);
        HL_LOG(LogLevel::Critical, "critical");
        HL_LOG(LogLevel::Error, "error");
        HL_LOG(LogLevel::Warning, "warning");
        HL_LOG(LogLevel::Info, "info");
    }
    dup2(savedStderr, STDERR_FILENO);
    close(savedStderr);
    close(journal[0]);
    // Standard error is no longer that stream: the variable is left from a parent and not ours.
    EXPECT_FALSE(hos::logger::StandardErrorIsTheJournal());
    unsetenv("JOURNAL_STREAM");

    std::string text;
    char buffer[512];
    fcntl(journal[1], F_SETFL, O_NONBLOCK);
    for (ssize_t n; (n = read(journal[1], buffer, sizeof(buffer))) > 0;) {
        text.append(buffer, static_cast<std::size_t>(n));
    }
    close(journal[1]);
    const std::regex lines(R"(<2>CRITICAL \[ACCESSARB\] \d+ \S*hos_logger_test\.cpp:\d+ TestBody: critical\n)"
                           R"(<3>ERROR    \[ACCESSARB\] \d+ \S*hos_logger_test\.cpp:\d+ TestBody: error\n)"
                           R"(<4>WARNING  \[ACCESSARB\] \d+ \S*hos_logger_test\.cpp:\d+ TestBody: warning\n)"
                           R"(<6>INFO     \[ACCESSARB\] \d+ \S*hos_logger_test\.cpp:\d+ TestBody: info\n)");
    EXPECT_TRUE(std::regex_match(text, lines)) << text;
}

}  // namespace
