// Unit file parsing: what is accepted, the defaults, and the line named for each fault.
#include "core/unit_file.h"

#include <gtest/gtest.h>

namespace hl_appmgr {
namespace {

TEST(UnitFile, FullUnitKeepsOrderAndValues) {
    const auto parsed = ParseUnit(
        "# the decision service\n"
        "name=AccessArbiter\nprogram=/opt/aa/access_arbiter\nargument=--one\nargument=two words\n"
        "environment=QT_QUICK_BACKEND=software\nenvironment=A==b\n\n"
        "watchdog_interval_ms=1500\nrestart=always\nstart_limit=3\nstart_limit_interval_ms=9000\n"
        "start_timeout_ms=330000\nstop_timeout_ms=2500\n");
    ASSERT_TRUE(parsed.ok) << parsed.error;
    EXPECT_EQ(parsed.unit.name, "AccessArbiter");
    EXPECT_EQ(parsed.unit.program, "/opt/aa/access_arbiter");
    EXPECT_EQ(parsed.unit.arguments, (std::vector<std::string>{"--one", "two words"}));
    ASSERT_EQ(parsed.unit.environment.size(), 2U);
    EXPECT_EQ(parsed.unit.environment[0].first, "QT_QUICK_BACKEND");
    EXPECT_EQ(parsed.unit.environment[0].second, "software");
    EXPECT_EQ(parsed.unit.environment[1].first, "A");
    EXPECT_EQ(parsed.unit.environment[1].second, "=b");
    EXPECT_EQ(parsed.unit.watchdogIntervalMs, 1500);
    EXPECT_EQ(parsed.unit.restart, RestartPolicy::Always);
    EXPECT_EQ(parsed.unit.startLimit, 3);
    EXPECT_EQ(parsed.unit.startLimitIntervalMs, 9000);
    EXPECT_EQ(parsed.unit.startTimeoutMs, 330000);
    EXPECT_EQ(parsed.unit.stopTimeoutMs, 2500);
}

TEST(UnitFile, DefaultsAndNameFromProgram) {
    const auto parsed = ParseUnit("program=bin/test_app");
    ASSERT_TRUE(parsed.ok) << parsed.error;
    EXPECT_EQ(parsed.unit.name, "test_app");
    EXPECT_EQ(parsed.unit.watchdogIntervalMs, 5000);
    EXPECT_EQ(parsed.unit.restart, RestartPolicy::OnFailure);
    EXPECT_EQ(parsed.unit.startLimit, 5);
    EXPECT_EQ(parsed.unit.startTimeoutMs, 0);
    EXPECT_EQ(parsed.unit.stopTimeoutMs, 5000);
    EXPECT_TRUE(parsed.unit.arguments.empty());
}

TEST(UnitFile, FaultsNameTheirLine) {
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"program=a\nnonsense\n", "line 2: expected key=value"},
        {"program=a\ncolour=red\n", "line 2: unknown key 'colour'"},
        {"program=a\nrestart=sometimes\n", "line 2: restart must be no, on-failure or always"},
        {"program=a\nwatchdog_interval_ms=0\n", "line 2: watchdog_interval_ms must be a positive number"},
        {"program=a\nwatchdog_interval_ms=5s\n", "line 2: watchdog_interval_ms must be a positive number"},
        {"program=a\nstart_limit=-1\n", "line 2: start_limit must be a number from 1 to 1000"},
        {"program=a\nstop_timeout_ms=0\n", "line 2: stop_timeout_ms must be a positive number"},
        {"program=a\nenvironment=novalue\n", "line 2: environment needs KEY=VALUE"},
        {"program=a\nenvironment==x\n", "line 2: environment needs KEY=VALUE"},
        {"program=a\nstart_timeout_ms=-5\n", "line 2: start_timeout_ms must be a number, 0 for no limit"},
        {"name=x\n", "line 0: program is missing"},
        {"program=/usr/bin/\n", "line 0: no name: give name= or a program whose path ends in a file name"},
        {"", "line 0: program is missing"},
        {" program=a\n", "line 1: unknown key ' program'"},
    };
    for (const auto& c : cases) {
        const auto parsed = ParseUnit(c.text);
        EXPECT_FALSE(parsed.ok) << c.text;
        EXPECT_EQ(parsed.error, c.error) << c.text;
    }
}

}  // namespace
}  // namespace hl_appmgr
