#include <common_utils/app_utils/get_app_name.h>

#include <diagnostics/check.h>
#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <string_view>

namespace {

using common_utils::app_utils::GetAppName;
using common_utils::app_utils::GetAppNameOrDefault;
using hos::logger::LogLevel;

constexpr std::string_view kDefault = "AccessArbiter";

TEST(GetAppName, ReturnsArgv0ItselfWithoutCopying) {
    const char* argv[] = {"/usr/bin/access_arbiter", "--ignored", nullptr};
    const std::string_view name = GetAppName(2, argv);
    EXPECT_EQ(name, "/usr/bin/access_arbiter");
    EXPECT_EQ(name.data(), argv[0]);
}

TEST(GetAppName, ThrowsWithoutArgumentsOrWithAnEmptyName) {
    const char* empty[] = {"", nullptr};
    const char* missing[] = {nullptr};
    const char* valid[] = {"app", nullptr};
    EXPECT_THROW(GetAppName(0, valid), hca::CheckFailedException);
    EXPECT_THROW(GetAppName(-1, valid), hca::CheckFailedException);
    EXPECT_THROW(GetAppName(1, empty), hca::CheckFailedException);
    EXPECT_THROW(GetAppName(1, missing), hca::CheckFailedException);
    EXPECT_THROW(GetAppName(1, nullptr), hca::CheckFailedException);
}

TEST(GetAppNameOrDefault, ValidNameIsReturnedWithoutLogging) {
    hos::logger::LogCaptureForTesting capture;
    const char* argv[] = {"access_arbiter", nullptr};
    EXPECT_EQ(GetAppNameOrDefault(1, argv, kDefault).data(), argv[0]);
    EXPECT_TRUE(capture.Records().empty());
}

TEST(GetAppNameOrDefault, ZeroArgcGivesTheDefaultAndExactlyOneErrorLine) {
    hos::logger::LogCaptureForTesting capture;
    const char* argv[] = {"access_arbiter", nullptr};
    const std::string_view name = GetAppNameOrDefault(0, argv, kDefault);
    EXPECT_EQ(name, kDefault);
    EXPECT_EQ(name.data(), kDefault.data()) << "the default must be handed back, not a copy";

    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, LogLevel::Error);
    // A failed check always reports "Unspecified error" (0x8000004B) as a signed number.
    EXPECT_EQ(records[0].message.rfind("Failed to get an app name[-2147483573]: ", 0), 0u)
        << records[0].message;
    EXPECT_EQ(records[0].function, "GetAppNameOrDefault");
}

TEST(GetAppNameOrDefault, EmptyArgv0GivesTheDefaultAndExactlyOneErrorLine) {
    hos::logger::LogCaptureForTesting capture;
    const char* argv[] = {"", nullptr};
    EXPECT_EQ(GetAppNameOrDefault(1, argv, kDefault), kDefault);
    EXPECT_EQ(capture.Count(LogLevel::Error), 1u);
    EXPECT_EQ(capture.Records().size(), 1u);
    EXPECT_TRUE(capture.Contains("Failed to get an app name["));
}

}  // namespace
