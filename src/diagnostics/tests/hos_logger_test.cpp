#include <diagnostics/default_logger_impl.h>
#include <diagnostics/hos_logger.h>
#include <diagnostics/log.h>
#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/qstring_formatter.h>

#include <gtest/gtest.h>

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

}  // namespace
