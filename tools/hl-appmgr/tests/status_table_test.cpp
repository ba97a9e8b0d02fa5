// The state file round trip, what a reader refuses, and the text and JSON forms of status.
#include "core/status_table.h"
#include "core/command_box.h"

#include <gtest/gtest.h>

namespace hl_appmgr {
namespace {

StatusTable Sample() {
    return {4242, {{"AccessArbiter", "running", 4300, 1000000, 2}, {"we\tird\nname", "exited", 0, -1, 0}}};
}

TEST(StatusTable, RoundTripCleansNames) {
    const auto parsed = ParseStatus(SerializeStatus(Sample()));
    ASSERT_TRUE(parsed.has_value());
    EXPECT_EQ(parsed->managerPid, 4242);
    ASSERT_EQ(parsed->apps.size(), 2U);
    EXPECT_EQ(parsed->apps[0].name, "AccessArbiter");
    EXPECT_EQ(parsed->apps[0].pid, 4300);
    EXPECT_EQ(parsed->apps[0].lastPingUnixMs, 1000000);
    EXPECT_EQ(parsed->apps[0].restarts, 2);
    EXPECT_EQ(parsed->apps[1].name, "we_ird_name");
    EXPECT_EQ(parsed->apps[1].lastPingUnixMs, -1);
}

TEST(StatusTable, MalformedFilesAreRefused) {
    for (const char* text :
         {"", "app=a\trunning\t1\t2\t3\n", "manager_pid=x\n", "manager_pid=1\napp=a\tb\t1\t2\n",
          "manager_pid=1\napp=a\tb\tone\t2\t3\n", "manager_pid=1\nsomething\n"}) {
        EXPECT_FALSE(ParseStatus(text).has_value()) << text;
    }
}

TEST(StatusTable, TextAndJsonShowSinceLastPing) {
    const std::string text = FormatStatusText(Sample(), 1002345);
    EXPECT_NE(text.find("hl-appmgr (pid 4242): 2 application(s)"), std::string::npos) << text;
    EXPECT_NE(text.find("AccessArbiter"), std::string::npos);
    EXPECT_NE(text.find("2.345s"), std::string::npos) << text;
    const std::string json = FormatStatusJson(Sample(), 1002345);
    EXPECT_EQ(
        json,
        "{\"manager_pid\": 4242, \"applications\": [\n"
        " {\"name\": \"AccessArbiter\", \"state\": \"running\", \"pid\": 4300, \"ms_since_last_ping\": 2345, "
        "\"restarts\": 2},\n"
        " {\"name\": \"we\\u0009ird\\u000aname\", \"state\": \"exited\", \"pid\": 0, \"ms_since_last_ping\": "
        "null, \"restarts\": 0}]}\n");
}

TEST(CommandBox, CommandTextIsCheckedWhole) {
    const auto good = ParseCommand(SerializeCommand({"app", "volume", -7}));
    ASSERT_TRUE(good.has_value());
    EXPECT_EQ(good->value, -7);
    for (const std::string& text :
         {std::string("app\nname\n"), std::string("app\nname\n12x\n"), std::string("\nname\n1\n"),
          std::string("app\nname\n1\nextra"), "app\n" + std::string(129, 'n') + "\n1\n"}) {
        EXPECT_FALSE(ParseCommand(text).has_value()) << text;
    }
}

}  // namespace
}  // namespace hl_appmgr
