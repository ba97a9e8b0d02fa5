#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/result_code.h>
#include <diagnostics/tracer.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using hos::logger::LogCaptureForTesting;
using hos::logger::LogLevel;
using trace::Tracer;

TEST(Tracer, EntryAndExitLinesWithArgsAndAPostfixEvaluatedAtExitAndWrittenAsItIs) {
    LogCaptureForTesting capture;
    int result = hca::result_code::kNotFound;
    {
        const auto postfix = [&result](std::string& scratch) -> std::string_view {
            Tracer::PutImpl(scratch, ": {{result = {}", hcax::ResultCodeText(result));
            return scratch;
        };
        Tracer tracer("[SM_P] ", "GetSetting", LogLevel::Debug, postfix, "{}/{}", "locale", "language");
        result = 0;
    }
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].message, "[SM_P] GetSetting(locale/language)");
    // The exit line has no gathered result, so the postfix text stands where the message would.
    EXPECT_EQ(records[1].message, "[SM_P] GetSetting(locale/language): : {result = No error = 0x00");
    for (const auto& record : records) {
        EXPECT_EQ(record.level, LogLevel::Debug);
        EXPECT_EQ(record.file, "component/logger/tracer");
        EXPECT_EQ(record.function, "LogImpl");
    }
    EXPECT_NE(records[0].line, records[1].line);
}

TEST(Tracer, LogImplShowsResultBeforeMessageWithoutSeparator) {
    LogCaptureForTesting capture;
    {
        Tracer tracer("T:", "Op", LogLevel::Info, &Tracer::NoPostfix, "@{:16X}", 0xABCu);
        Tracer::PutImpl(tracer.Result(), "#{}, ncount = {}", 7, 3);
        tracer.LogImpl(LogLevel::Warning, " -> path uvc::IdState = {}", 2);
        tracer.LogImpl(LogLevel::Info, std::string_view());
        tracer.Result().clear();
        tracer.LogImpl(LogLevel::Info, " -> braces {} and { stay");
    }
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 5u);
    EXPECT_EQ(records[0].message, "T:Op(@             ABC)");
    EXPECT_EQ(records[1].message, "T:Op(@             ABC): #7, ncount = 3 -> path uvc::IdState = 2");
    EXPECT_EQ(records[1].level, LogLevel::Warning);
    EXPECT_EQ(records[2].message, "T:Op(@             ABC): #7, ncount = 3");
    EXPECT_EQ(records[3].message, "T:Op(@             ABC):  -> braces {} and { stay");
    // NoPostfix gives an empty view: the exit line has the form without result and message.
    EXPECT_EQ(records[4].message, "T:Op(@             ABC)");
    EXPECT_NE(records[1].line, records[2].line);  // each line form has its own source line
}

TEST(Tracer, WritesAndCallsThePostfixOnlyWhenItsLevelRaisedOrNotIsEnabled) {
    const struct {
        LogLevel level, raisedTo, expected;
    } cases[] = {{LogLevel::Off, LogLevel::Error, LogLevel::Off},
                 {LogLevel::Debug, LogLevel::Debug, LogLevel::Debug},
                 {LogLevel::Debug, LogLevel::Error, LogLevel::Error}};
    for (const auto& c : cases) {
        LogCaptureForTesting capture;
        capture.SetLevel(LogLevel::Info);
        int postfixCalls = 0;
        {
            const auto postfix = [&postfixCalls](std::string&) -> std::string_view {
                return ++postfixCalls, ": result = failed";
            };
            Tracer tracer("[SM_P] ", "Read", c.level, postfix, "{}", "a/b/");
            tracer.LogImpl(c.level, "in the middle {}", 2);
            tracer.RaiseLevel(c.raisedTo);
            tracer.RaiseLevel(LogLevel::Debug);  // a later, milder failure never lowers it
            EXPECT_EQ(tracer.Level(), c.expected);
            Tracer::PutImpl(tracer.Result(), ": {} call error: nk = {}", "Read", 5);
        }
        const auto records = capture.Records();
        const bool written = c.expected == LogLevel::Error;
        EXPECT_EQ(postfixCalls, written ? 1 : 0);
        ASSERT_EQ(records.size(), written ? 1u : 0u);
        if (written) {
            EXPECT_EQ(records[0].level, LogLevel::Error);
            EXPECT_EQ(records[0].message, "[SM_P] Read(a/b/): : Read call error: nk = 5: result = failed");
        }
    }
}

TEST(Tracer, EmptyArgsGiveEmptyParenthesesAndAnEmptyPostfixIsReportedAtErrorWithoutEscaping) {
    LogCaptureForTesting capture;
    { Tracer tracer("", "Op", LogLevel::Info, Tracer::Postfix(), ""); }
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].message, "Op()");
    EXPECT_EQ(records[1].level, LogLevel::Error);
    EXPECT_EQ(records[1].function, "~Tracer");
    EXPECT_EQ(records[1].message.rfind("~Tracer exception: ", 0), 0u) << records[1].message;
}

}  // namespace
