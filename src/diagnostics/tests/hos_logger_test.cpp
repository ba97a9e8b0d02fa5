#include <diagnostics/default_logger_impl.h>
#include <diagnostics/hos_logger.h>
#include <diagnostics/log.h>
#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/qstring_formatter.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
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

// Each test case runs in a process of its own, so this one sees the logger before any Setup.
TEST(HOSLogger, BeforeSetupUsesDefaultTagAtInfo) {
  HOSLogger& logger = HOSLogger::RootLogger();
  EXPECT_EQ(logger.Tag(), "HL");
  EXPECT_EQ(logger.Level(), LogLevel::Info);
  EXPECT_FALSE(logger.IsEnabled(LogLevel::Debug));
  EXPECT_TRUE(logger.IsEnabled(LogLevel::Info));
}

TEST(HOSLogger, IsEnabledFromTheLevelUpAndNeverForOff) {
  LogCaptureForTesting capture;
  HOSLogger& logger = HOSLogger::RootLogger();
  EXPECT_TRUE(logger.IsEnabled(LogLevel::Trace));
  EXPECT_FALSE(logger.IsEnabled(LogLevel::Off));
  capture.SetLevel(LogLevel::Warning);
  EXPECT_FALSE(logger.IsEnabled(LogLevel::Info));
  EXPECT_TRUE(logger.IsEnabled(LogLevel::Warning));
  EXPECT_TRUE(logger.IsEnabled(LogLevel::Critical));
  capture.SetLevel(LogLevel::Off);
  EXPECT_FALSE(logger.IsEnabled(LogLevel::Critical));
  EXPECT_FALSE(logger.IsEnabled(LogLevel::Off));
}

TEST(HlLog, HandsOverLevelFileLineBareFunctionAndFormattedText) {
  LogCaptureForTesting capture;
  const int line = __LINE__ + 1;
  HL_LOG(LogLevel::Error, "Failed to push user decision with code={}, message: '{}'", -5, "boom");
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].level, LogLevel::Error);
  EXPECT_EQ(records[0].file, __FILE__);
  EXPECT_EQ(records[0].line, line);
  EXPECT_EQ(records[0].function, "TestBody");
  EXPECT_EQ(records[0].message, "Failed to push user decision with code=-5, message: 'boom'");
  EXPECT_TRUE(capture.Contains("code=-5"));
  EXPECT_FALSE(capture.Contains("code=-6"));
}

TEST(HlLog, LambdaSitesNameOperatorCall) {
  LogCaptureForTesting capture;
  [] { HL_LOG(LogLevel::Info, "in a lambda"); }();
  ASSERT_EQ(capture.Records().size(), 1u);
  EXPECT_EQ(capture.Records()[0].function, "operator()");
}

TEST(HlLog, DisabledLevelRendersNoArguments) {
  LogCaptureForTesting capture;
  capture.SetLevel(LogLevel::Info);
  int rendered = 0;
  const auto render = [&rendered] { return ++rendered; };
  HL_LOG(LogLevel::Debug, "value {}", render());
  HL_LOG(LogLevel::Off, "value {}", render());
  EXPECT_EQ(rendered, 0);
  EXPECT_TRUE(capture.Records().empty());
  HL_LOG(LogLevel::Warning, "value {}", render());
  EXPECT_EQ(rendered, 1);
  EXPECT_EQ(capture.Count(LogLevel::Warning), 1u);
}

TEST(HlLog, FormatSpecificationsAndQStringsFollowFmtRules) {
  LogCaptureForTesting capture;
  HL_LOG(LogLevel::Info, "cid {:16X} locale '{:>6}'", 0xBEEFu, QString::fromUtf8("de"));
  EXPECT_EQ(capture.Records().at(0).message, "cid             BEEF locale '    de'");
  EXPECT_THROW(HL_LOG(LogLevel::Info, "missing {} {}", 1), fmt::format_error);
}

TEST(HOSLogger, LogImplWritesWhateverTheLevel) {
  LogCaptureForTesting capture;
  capture.SetLevel(LogLevel::Critical);
  std::string message = "raw {} text";
  HOSLogger::RootLogger().LogImpl(LogLevel::Debug, nullptr, 3, nullptr, message);
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].message, "raw {} text");
  EXPECT_EQ(records[0].file, "");
  EXPECT_EQ(records[0].function, "");
}

TEST(HOSLogger, SetupSetsTagAndLevelAndCaptureStaysInFront) {
  DefaultSetupRestorer restorer;
  LogCaptureForTesting capture;
  HOSLogger::Setup("ACCESSARB", LogLevel::Info, nullptr);
  HOSLogger& logger = HOSLogger::RootLogger();
  EXPECT_EQ(logger.Tag(), "ACCESSARB");
  EXPECT_FALSE(logger.IsEnabled(LogLevel::Debug));
  HL_LOG(LogLevel::Info, "started");
  ASSERT_EQ(capture.Records().size(), 1u);
  EXPECT_EQ(capture.Records()[0].tag, "ACCESSARB");
}

class CollectingImpl : public hos::logger::DefaultLoggerImpl {
 public:
  explicit CollectingImpl(std::vector<LogRecord>* out) : m_out(out) {}
  void Write(const LogRecord& record) override { m_out->push_back(record); }

 private:
  std::vector<LogRecord>* m_out;
};

TEST(HOSLogger, SetupWithImplRoutesLinesThereOnceTheCaptureEnds) {
  std::vector<LogRecord> written;
  DefaultSetupRestorer restorer;  // declared after written: the impl goes before the vector
  {
    LogCaptureForTesting capture;
    HOSLogger::Setup("TAG", LogLevel::Debug, std::make_unique<CollectingImpl>(&written));
    HL_LOG(LogLevel::Info, "to the capture");
    EXPECT_EQ(capture.Records().size(), 1u);
  }
  // The capture restored the level it found, which was the one before Setup.
  HOSLogger::RootLogger().SetLevel(LogLevel::Debug);
  HL_LOG(LogLevel::Debug, "to the impl {}", 1);
  HL_LOG(LogLevel::Trace, "filtered");
  ASSERT_EQ(written.size(), 1u);
  EXPECT_EQ(written[0].message, "to the impl 1");
  EXPECT_EQ(written[0].tag, "TAG");
}

TEST(LogCaptureForTesting, RestoresLevelAndOuterCaptureWhenDestroyed) {
  HOSLogger& logger = HOSLogger::RootLogger();
  logger.SetLevel(LogLevel::Warning);
  {
    LogCaptureForTesting outer;
    EXPECT_EQ(logger.Level(), LogLevel::Trace);
    {
      LogCaptureForTesting inner;
      HL_LOG(LogLevel::Debug, "inner line");
      EXPECT_TRUE(inner.Contains("inner line"));
    }
    HL_LOG(LogLevel::Debug, "outer line");
    EXPECT_FALSE(outer.Contains("inner line"));
    EXPECT_TRUE(outer.Contains("outer line"));
    outer.Clear();
    EXPECT_TRUE(outer.Records().empty());
  }
  EXPECT_EQ(logger.Level(), LogLevel::Warning);
  logger.SetLevel(LogLevel::Info);
}

TEST(HOSLogger, ConcurrentLogSitesLoseNoLine) {
  LogCaptureForTesting capture;
  constexpr int kThreads = 4;
  constexpr int kLines = 200;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < kLines; ++i) {
        HL_LOG(LogLevel::Info, "thread {} line {}", t, i);
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), static_cast<std::size_t>(kThreads * kLines));
  std::vector<int> perThread(kThreads, 0);
  for (const auto& record : records) {
    int t = -1;
    int i = -1;
    ASSERT_EQ(std::sscanf(record.message.c_str(), "thread %d line %d", &t, &i), 2);
    ASSERT_EQ(i, perThread.at(static_cast<std::size_t>(t)));  // in order within a thread
    ++perThread[static_cast<std::size_t>(t)];
  }
}

TEST(FormatLogLine, ShowsTimeLevelTagThreadSourceAndEscapedMessage) {
  LogRecord record;
  record.level = LogLevel::Warning;
  record.file = "/src/app/main.cpp";
  record.line = 42;
  record.function = "SetupLogger";
  record.message = "two\nlines\tand \x01";
  record.tag = "ACCESSARB";
  record.threadId = 4711;
  record.time = std::chrono::system_clock::time_point(std::chrono::seconds(1700000000) + std::chrono::microseconds(5));
  EXPECT_EQ(hos::logger::FormatLogLine(record),
            "2023-11-14T22:13:20.000005Z WARNING  [ACCESSARB] 4711 /src/app/main.cpp:42 SetupLogger: "
            "two\\nlines\\tand \\x01\n");
}

// Points file descriptor 2 at a temporary file while alive.
class StderrRedirect {
 public:
  StderrRedirect() {
    char path[] = "/tmp/hl_stderr_XXXXXX";
    m_fd = ::mkstemp(path);
    m_path = path;
    m_saved = ::dup(STDERR_FILENO);
    ::dup2(m_fd, STDERR_FILENO);
  }
  ~StderrRedirect() {
    Restore();
    ::close(m_fd);
    ::unlink(m_path.c_str());
  }
  void Restore() {
    if (m_saved >= 0) {
      ::dup2(m_saved, STDERR_FILENO);
      ::close(m_saved);
      m_saved = -1;
    }
  }
  std::string Contents() const {
    std::string text;
    char buffer[4096];
    ssize_t n = 0;
    ::lseek(m_fd, 0, SEEK_SET);
    while ((n = ::read(m_fd, buffer, sizeof(buffer))) > 0) {
      text.append(buffer, static_cast<std::size_t>(n));
    }
    return text;
  }

 private:
  int m_fd = -1;
  int m_saved = -1;
  std::string m_path;
};

TEST(HOSLogger, DefaultOutputWritesOneWellFormedLineToStandardError) {
  DefaultSetupRestorer restorer;
  HOSLogger::Setup("ACCESSARB", LogLevel::Info, nullptr);
  StderrRedirect redirect;
  HL_LOG(LogLevel::Info, "Decision {} received", 1);
  HL_LOG(LogLevel::Debug, "filtered");
  redirect.Restore();
  const std::string text = redirect.Contents();
  const std::regex line(
      R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z INFO +\[ACCESSARB\] \d+ )"
      R"(\S*hos_logger_test\.cpp:\d+ TestBody: Decision 1 received\n)");
  EXPECT_TRUE(std::regex_match(text, line)) << text;
}

}  // namespace
