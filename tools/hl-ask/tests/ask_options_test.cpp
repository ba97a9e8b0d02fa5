// hl-ask's command line. The exit code and text of each ending are its process test's part.
#include "core/ask_options.h"

#include <gtest/gtest.h>

namespace hl_ask {
namespace {

TEST(AskOptions, ParsesAndRefuses) {
    const auto both = ParseOptions({"--timeout", "250", "--wait-for-service", "3000"});
    ASSERT_TRUE(both.ok) << both.error;
    EXPECT_EQ(both.options.timeoutMs, 250U);
    EXPECT_EQ(both.options.waitForServiceMs, 3000U);
    EXPECT_FALSE(ParseOptions({}).options.timeoutMs.has_value());
    const struct {
        std::vector<std::string> arguments;
        const char* error;
    } bad[] = {
        {{"--timeout"}, "--timeout needs a number of milliseconds"},
        {{"--timeout", "-1"}, "--timeout needs a number of milliseconds"},
        {{"--wait-for-service", "5s"}, "--wait-for-service needs a number of milliseconds"},
        {{"--timeout", "99999999999"}, "--timeout needs a number of milliseconds"},
        {{"approve"}, "unknown argument 'approve'"},
    };
    for (const auto& c : bad) {
        const auto parsed = ParseOptions(c.arguments);
        EXPECT_FALSE(parsed.ok);
        EXPECT_EQ(parsed.error, c.error);
    }
}

}  // namespace
}  // namespace hl_ask
