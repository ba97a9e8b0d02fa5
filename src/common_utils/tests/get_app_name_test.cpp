#include <common_utils/app_utils/get_app_name.h>

#include <diagnostics/check.h>
#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <string_view>

namespace {

using common_utils::app_utils::GetAppName;
using common_utils::app_utils::GetAppNameOrDefault;

constexpr std::string_view kDefault = "AccessArbiter";

TEST(GetAppName, ReturnsArgv0ItselfAndThrowsWithoutAUsableName) {
    const char* valid[] = {"/usr/bin/access_arbiter", "--ignored", nullptr};
    EXPECT_EQ(GetAppName(2, valid).data(), valid[0]);
    const char* empty[] = {"", nullptr};
    const char* missing[] = {nullptr};
    EXPECT_THROW(GetAppName(0, valid), hca::CheckFailedException);
    EXPECT_THROW(GetAppName(1, empty), hca::CheckFailedException);
    EXPECT_THROW(GetAppName(1, missing), hca::CheckFailedException);
    EXPECT_THROW(GetAppName(1, nullptr), hca::CheckFailedException);
}

TEST(GetAppNameOrDefault, BadNameGivesTheDefaultAndExactlyOneErrorLineAGoodOneNoLine) {
    const char* empty[] = {"", nullptr};
    const char* valid[] = {"access_arbiter", nullptr};
    struct Case {
        int argc;
        const char** argv;
        const char* expected;
    } cases[] = {{0, valid, kDefault.data()}, {1, empty, kDefault.data()}, {1, valid, valid[0]}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        hos::logger::LogCaptureForTesting capture;
        EXPECT_EQ(GetAppNameOrDefault(c.argc, c.argv, kDefault).data(), c.expected) << "no copy is made";
        const auto records = capture.Records();
        if (c.expected != kDefault.data()) {
            EXPECT_TRUE(records.empty());
            continue;
        }
        ASSERT_EQ(records.size(), 1u);
        EXPECT_EQ(records[0].level, hos::logger::LogLevel::Error);
        // A failed check always reports "Unspecified error" (0x8000004B) as a signed number.
        EXPECT_EQ(records[0].message.rfind("Failed to get an app name[-2147483573]: ", 0), 0u)
            << records[0].message;
    }
}

}  // namespace
