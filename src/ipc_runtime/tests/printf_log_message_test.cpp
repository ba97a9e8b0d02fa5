#include <ipc_runtime/printf_log_message.h>

#include <gtest/gtest.h>

#include <string>

// Some cases format into buffers that are too small on purpose.
#pragma GCC diagnostic ignored "-Wformat-truncation"

namespace {

using hosipc_detail::api_v1::PrintfLogMessage;

TEST(PrintfLogMessage, TextFormatsOnceAndCachesWhileABufferIsFormattedAgain) {
    unsigned int riid = 65536;
    PrintfLogMessage<const char*, const char*, unsigned int&> message("%s:%s %u", "a", "b", riid);
    EXPECT_EQ(message.FormattedSize(), 9U);
    const char* first = message.Text();
    ASSERT_STREQ(first, "a:b 65536");
    // The argument is held by reference: a second formatting would show the new value.
    riid = 7;
    EXPECT_EQ(message.Text(), first);
    EXPECT_STREQ(message.Text(), "a:b 65536");
    char buffer[32];
    EXPECT_STREQ(message.Text(buffer, sizeof buffer), "a:b 7");
    char small[4];
    EXPECT_STREQ(message.Text(small, sizeof small), "a:b");
    EXPECT_EQ(message.Text(nullptr, 10), nullptr);
    char untouched[4] = {'q', 'q', 'q', '\0'};
    EXPECT_EQ(message.Text(untouched, 0), untouched);
    EXPECT_STREQ(untouched, "qqq");
}

}  // namespace
