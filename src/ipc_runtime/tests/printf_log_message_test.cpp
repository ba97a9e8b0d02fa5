#include <ipc_runtime/printf_log_message.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

// Some cases format into buffers that are too small on purpose.
#pragma GCC diagnostic ignored "-Wformat-truncation"

namespace {

using hosipc_detail::api_v1::PrintfLogMessage;

TEST(PrintfLogMessage, FormatsPrintfStyle) {
    int rc = -5;
    PrintfLogMessage<const char*, const char*, int&> message(
        "Failed to connect to \"%s\":\"%s\" with rc = %d\n", "server", "service", rc);
    const std::string expected = "Failed to connect to \"server\":\"service\" with rc = -5\n";

    EXPECT_EQ(message.FormattedSize(), expected.size());
    EXPECT_EQ(std::string(message.Text()), expected);
}

TEST(PrintfLogMessage, TextTwiceFormatsOnlyOnce) {
    unsigned int riid = 65536;
    PrintfLogMessage<const char*, const char*, unsigned int&> message("%s:%s %u", "a", "b", riid);

    const char* first = message.Text();
    ASSERT_STREQ(first, "a:b 65536");
    // The argument is held by reference: a second formatting would show the new value.
    riid = 7;
    const char* second = message.Text();
    EXPECT_EQ(second, first);
    EXPECT_STREQ(second, "a:b 65536");
    // Formatting into a buffer is not cached and sees the change.
    char buffer[32];
    EXPECT_STREQ(message.Text(buffer, sizeof buffer), "a:b 7");
}

TEST(PrintfLogMessage, TextIntoNullOrEmptyBufferReturnsItUntouched) {
    int value = 1;
    PrintfLogMessage<const char*, const char*, int&> message("%s%s%d", "x", "y", value);

    EXPECT_EQ(message.Text(nullptr, 10), nullptr);
    char buffer[4] = {'q', 'q', 'q', '\0'};
    EXPECT_EQ(message.Text(buffer, 0), buffer);
    EXPECT_STREQ(buffer, "qqq");
}

TEST(PrintfLogMessage, TextIntoSmallBufferTruncatesWithTerminator) {
    int value = 12345;
    PrintfLogMessage<const char*, const char*, int&> message("%s-%s-%d", "ab", "cd", value);

    char buffer[6];
    std::memset(buffer, 'z', sizeof buffer);
    EXPECT_EQ(message.Text(buffer, sizeof buffer), buffer);
    EXPECT_STREQ(buffer, "ab-cd");
}

TEST(PrintfLogMessage, FormattingFailureGivesTheFallbackText) {
    // In the C locale a lone surrogate can't be converted, so snprintf fails.
    const wchar_t unconvertible[] = {static_cast<wchar_t>(0xD800), 0};
    PrintfLogMessage<const wchar_t*> message("%ls", unconvertible);

    EXPECT_EQ(message.FormattedSize(), 0U);
    char buffer[64];
    EXPECT_STREQ(message.Text(buffer, sizeof buffer), "failed to format a log message");
    char small[7];
    EXPECT_STREQ(message.Text(small, sizeof small), "failed");
}

}  // namespace
