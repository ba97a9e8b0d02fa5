#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/result_code.h>
#include <diagnostics/tracer.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using hos::logger::LogCaptureForTesting;
using hos::logger::LogLevel;
using trace::Tracer;

TEST(Tracer, EntryAndExitLinesWithArgsAndPostfix) {
  LogCaptureForTesting capture;
  int result = hca::result_code::kNotFound;
  {
    Tracer tracer("[SM_P] ", "GetSetting", LogLevel::Debug,
                  [&result](std::string& scratch) -> std::string_view {
                    Tracer::PutImpl(scratch, ": result = {}", hcax::ResultCodeText(result));
                    return scratch;
                  },
                  "{}/{}", "locale", "language");
    result = 0;
  }
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].message, "[SM_P] GetSetting(locale/language)");
  // The exit line has no gathered result, so the postfix text stands where the message would.
  EXPECT_EQ(records[1].message, "[SM_P] GetSetting(locale/language): : result = No error = 0x00");
  for (const auto& record : records) {
    EXPECT_EQ(record.level, LogLevel::Debug);
    EXPECT_EQ(record.file, "component/logger/tracer");
    EXPECT_EQ(record.function, "LogImpl");
  }
  // Each line form has its own source line.
  EXPECT_NE(records[0].line, records[1].line);
}

TEST(Tracer, EmptyArgsGiveEmptyParenthesesAndTagJoinsMethodDirectly) {
  LogCaptureForTesting capture;
  { Tracer tracer("", "UnregCallback", LogLevel::Info, &Tracer::NoPostfix, ""); }
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].message, "UnregCallback()");
  // NoPostfix gives an empty view: the exit line has the form without result and message.
  EXPECT_EQ(records[1].message, "UnregCallback()");
}

TEST(Tracer, LogImplShowsResultBeforeMessageWithoutSeparator) {
  LogCaptureForTesting capture;
  Tracer tracer("T:", "Op", LogLevel::Info, &Tracer::NoPostfix, "@{:16X}", 0xABCu);
  Tracer::PutImpl(tracer.Result(), "#{}, ncount = {}", 7, 3);
  Tracer::PutImpl(tracer.Result(), "");
  tracer.LogImpl(LogLevel::Warning, " -> path uvc::IdState = {}", 2);
  tracer.LogImpl(LogLevel::Info, std::string_view());
  tracer.Result().clear();
  tracer.LogImpl(LogLevel::Info, " -> null sid");
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 4u);
  EXPECT_EQ(records[0].message, "T:Op(@             ABC)");
  EXPECT_EQ(records[1].message, "T:Op(@             ABC): #7, ncount = 3 -> path uvc::IdState = 2");
  EXPECT_EQ(records[1].level, LogLevel::Warning);
  EXPECT_EQ(records[2].message, "T:Op(@             ABC): #7, ncount = 3");
  EXPECT_EQ(records[3].message, "T:Op(@             ABC):  -> null sid");
  EXPECT_NE(records[1].line, records[2].line);
  EXPECT_NE(records[2].line, records[0].line);
}

TEST(Tracer, FormatWithoutArgumentsIsNotInterpreted) {
  LogCaptureForTesting capture;
  Tracer tracer("", "Op", LogLevel::Info, &Tracer::NoPostfix, "");
  tracer.LogImpl(LogLevel::Info, "braces {} and { stay");
  EXPECT_EQ(capture.Records().back().message, "Op(): braces {} and { stay");
}

TEST(Tracer, PostfixTextWithBraceIsWrittenAsItIs) {
  LogCaptureForTesting capture;
  {
    Tracer tracer("", "Op", LogLevel::Info,
                  [](std::string& scratch) -> std::string_view {
                    scratch = ": odd {text} {";
                    return scratch;
                  },
                  "");
  }
  ASSERT_EQ(capture.Records().size(), 2u);
  EXPECT_EQ(capture.Records()[1].message, "Op(): : odd {text} {");
}

TEST(Tracer, LevelOffWritesNothingAndNeverCallsThePostfix) {
  LogCaptureForTesting capture;
  int postfixCalls = 0;
  {
    Tracer tracer("", "Op", LogLevel::Off,
                  [&postfixCalls](std::string&) -> std::string_view {
                    ++postfixCalls;
                    return "x";
                  },
                  "{}", 1);
    tracer.LogImpl(LogLevel::Off, "in the middle {}", 2);
    tracer.RaiseLevel(LogLevel::Error);  // raising never lowers Off
    EXPECT_EQ(tracer.Level(), LogLevel::Off);
  }
  EXPECT_TRUE(capture.Records().empty());
  EXPECT_EQ(postfixCalls, 0);
}

TEST(Tracer, RaisedFromDebugToErrorWritesExactlyTheExitLine) {
  LogCaptureForTesting capture;
  capture.SetLevel(LogLevel::Info);
  int postfixCalls = 0;
  {
    Tracer tracer("[SM_P] ", "Read", LogLevel::Debug,
                  [&postfixCalls](std::string&) -> std::string_view {
                    ++postfixCalls;
                    return ": result = failed";
                  },
                  "{}", "a/b/");
    tracer.RaiseLevel(LogLevel::Error);
    tracer.RaiseLevel(LogLevel::Warning);  // a later, milder failure doesn't lower it
    EXPECT_EQ(tracer.Level(), LogLevel::Error);
    Tracer::PutImpl(tracer.Result(), ": {} call error: nk = {}", "Read", 5);
  }
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].level, LogLevel::Error);
  EXPECT_EQ(records[0].message, "[SM_P] Read(a/b/): : Read call error: nk = 5: result = failed");
  EXPECT_EQ(postfixCalls, 1);
}

TEST(Tracer, FilteredTracerNeitherWritesNorCallsPostfix) {
  LogCaptureForTesting capture;
  capture.SetLevel(LogLevel::Info);
  int postfixCalls = 0;
  {
    Tracer tracer("", "Op", LogLevel::Debug,
                  [&postfixCalls](std::string&) -> std::string_view {
                    ++postfixCalls;
                    return {};
                  },
                  "");
    tracer.LogImpl(LogLevel::Debug, "hidden {}", 1);
  }
  EXPECT_TRUE(capture.Records().empty());
  EXPECT_EQ(postfixCalls, 0);
}

TEST(Tracer, EmptyPostfixIsReportedAtErrorAndDoesNotEscape) {
  LogCaptureForTesting capture;
  { Tracer tracer("", "Op", LogLevel::Info, Tracer::Postfix(), ""); }
  const auto records = capture.Records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[1].level, LogLevel::Error);
  EXPECT_EQ(records[1].function, "~Tracer");
  EXPECT_EQ(records[1].message.rfind("~Tracer exception: ", 0), 0u) << records[1].message;
}

}  // namespace
