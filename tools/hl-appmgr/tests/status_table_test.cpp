// The status as the manager answers it (JSON) and as hl-appmgr status prints it.
#include "core/status_table.h"

#include <gtest/gtest.h>

namespace hl_appmgr {
namespace {

StatusTable Sample() {
    return {4242,
            {{"AccessArbiter", "running", 4300, 61500, "killed by signal 6", 2, 2345, {"first", "last"}},
             {"we\tird", "exited", 0, -1, "", 0, -1, {}}}};
}

TEST(StatusTable, JsonRoundTripKeepsEveryField) {
    const auto parsed = StatusFromJson(StatusToJson(Sample()));
    ASSERT_TRUE(parsed.has_value());
    EXPECT_EQ(parsed->managerPid, 4242);
    ASSERT_EQ(parsed->apps.size(), 2U);
    const AppStatus& first = parsed->apps[0];
    EXPECT_EQ(first.pid, 4300);
    EXPECT_EQ(first.uptimeMs, 61500);
    EXPECT_EQ(first.lastExit, "killed by signal 6");
    EXPECT_EQ(first.restarts, 2);
    EXPECT_EQ(first.msSinceLastPing, 2345);
    EXPECT_EQ(first.output, (std::vector<std::string>{"first", "last"}));
    EXPECT_EQ(parsed->apps[1].name, "we\tird");
    EXPECT_EQ(parsed->apps[1].uptimeMs, -1);
    EXPECT_EQ(parsed->apps[1].msSinceLastPing, -1);
    EXPECT_EQ(parsed->apps[1].lastExit, "");
}

TEST(StatusTable, MalformedTextsAreRefused) {
    for (const char* text :
         {"", "[]", "{\"manager_pid\": 1}", "{\"manager_pid\": \"x\", \"applications\": []}",
          "{\"manager_pid\": 1, \"applications\": [{\"name\": \"a\"}]}", "{\"manager_pid\": 1, \"applications\": ["}) {
        EXPECT_FALSE(StatusFromJson(text).has_value()) << text;
    }
}

TEST(StatusTable, InvalidUtf8OutputIsReplacedNotThrown) {
    StatusTable table = Sample();
    table.apps[0].output = {"\xff\xfe bytes"};
    const auto parsed = StatusFromJson(StatusToJson(table));
    ASSERT_TRUE(parsed.has_value());
    EXPECT_NE(parsed->apps[0].output.at(0).find(" bytes"), std::string::npos);
}

TEST(StatusTable, TextFormsShowWhatStatusPromises) {
    const std::string list = FormatStatusText(Sample(), false);
    EXPECT_NE(list.find("hl-appmgr (pid 4242): 2 application(s)"), std::string::npos) << list;
    EXPECT_NE(list.find("2.345s"), std::string::npos) << list;
    const std::string detail = FormatStatusText(Sample(), true);
    for (const char* part : {"State: running", "PID: 4300", "Uptime: 61.500s", "Last exit: killed by signal 6",
                             "Restarts: 2", "Last Ping: 2.345s ago", "first\nlast\n"}) {
        EXPECT_NE(detail.find(part), std::string::npos) << part << "\n" << detail;
    }
    // On a terminal the state is coloured, and the columns stay where they were.
    const std::string coloured = FormatStatusText(Sample(), false, true);
    EXPECT_NE(coloured.find("\033[32mrunning         \033[0m"), std::string::npos) << coloured;
    EXPECT_EQ(FormatStatusText(Sample(), true, true).find("State: running\n"), std::string::npos);
}

}  // namespace
}  // namespace hl_appmgr
