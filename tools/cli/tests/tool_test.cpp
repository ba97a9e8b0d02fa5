// The conventions every tool gets from the core: what parses, what is a usage error and what it
// prints, --version, the exit-code table in --help, and when colour is allowed.
#include <hl_cli/tool.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

using hl::cli::Tool;

struct Parsed {
    std::optional<int> status;
    std::string out;
    std::string err;
    std::string timeout;
    std::vector<std::string> rest;
};

Parsed ParseWith(std::vector<const char*> args) {
    Tool tool("hl-demo", "A demonstration.", {{0, "done"}, {2, "usage error"}, {5, "timed out"}});
    Parsed parsed;
    tool.App().add_option("--timeout", parsed.timeout, "MS");
    tool.App().add_option("rest", parsed.rest);
    args.insert(args.begin(), "hl-demo");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    parsed.status = tool.Parse(static_cast<int>(args.size()), args.data());
    parsed.out = testing::internal::GetCapturedStdout();
    parsed.err = testing::internal::GetCapturedStderr();
    return parsed;
}

TEST(ToolCore, OptionsTakeTheirValueEitherWayAndADoubleDashEndsThem) {
    for (const auto& args : std::vector<std::vector<const char*>>{{"--timeout=70", "a"}, {"--timeout", "70", "a"}}) {
        const Parsed parsed = ParseWith(args);
        EXPECT_FALSE(parsed.status.has_value());
        EXPECT_EQ(parsed.timeout, "70");
        EXPECT_EQ(parsed.rest, std::vector<std::string>{"a"});
    }
    const Parsed dashed = ParseWith({"--", "--timeout", "-x"});
    EXPECT_FALSE(dashed.status.has_value());
    EXPECT_EQ(dashed.timeout, "");
    EXPECT_EQ(dashed.rest, (std::vector<std::string>{"--timeout", "-x"}));
}

TEST(ToolCore, AUsageErrorNamesTheArgumentOnStandardErrorAndExitsTwo) {
    const Parsed parsed = ParseWith({"--bogus"});
    EXPECT_EQ(parsed.status, 2);
    EXPECT_EQ(parsed.out, "");
    EXPECT_NE(parsed.err.find("hl-demo: "), std::string::npos) << parsed.err;
    EXPECT_NE(parsed.err.find("--bogus"), std::string::npos) << parsed.err;
    EXPECT_NE(parsed.err.find("Try 'hl-demo --help' for more information.\n"), std::string::npos) << parsed.err;

    EXPECT_EQ(ParseWith({"--timeout"}).status, 2);
}

TEST(ToolCore, HelpAndVersionGoToStandardOutputAndExitZero) {
    const Parsed version = ParseWith({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, std::string("hl-demo ") + HL_VERSION + "\n");

    const Parsed help = ParseWith({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_NE(help.out.find("A demonstration."), std::string::npos);
    EXPECT_NE(help.out.find("--version"), std::string::npos);
    EXPECT_NE(help.out.find("Exit status:\n  0    done\n  2    usage error\n  5    timed out"), std::string::npos)
        << help.out;
}

TEST(ToolCore, ColourOnlyOnATerminalWithoutNoColorOrADumbTerminal) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    int pipeEnds[2];
    ASSERT_EQ(::pipe(pipeEnds), 0);
    ::unsetenv("NO_COLOR");
    ::setenv("TERM", "xterm", 1);
    EXPECT_TRUE(hl::cli::ColorEnabled(terminal));
    EXPECT_FALSE(hl::cli::ColorEnabled(pipeEnds[1]));
    ::setenv("NO_COLOR", "", 1);
    EXPECT_TRUE(hl::cli::ColorEnabled(terminal));
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(hl::cli::ColorEnabled(terminal));
    ::unsetenv("NO_COLOR");
    ::setenv("TERM", "dumb", 1);
    EXPECT_FALSE(hl::cli::ColorEnabled(terminal));
    ::close(terminal);
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);

    EXPECT_EQ(hl::cli::Paint("failed", hl::cli::Color::Red, false), "failed");
    EXPECT_EQ(hl::cli::Paint("failed", hl::cli::Color::Red, true), "\033[31mfailed\033[0m");
}

}  // namespace
