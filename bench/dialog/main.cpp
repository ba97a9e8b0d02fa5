// hl_access_arbiter_dialog_benchmark: the dialog's latencies and memory beside a one-shot zenity
// dialog. scripts/bench-dialog.sh builds it and runs it.
#include <diagnostics/hos_logger.h>
#include <hosted_session/session.h>
#include <hosted_session/x_display.h>

#include "dialog_benchmark.h"

#include <CLI/CLI.hpp>

#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr const char* kDescription =
    "Measures the dialog on the X server of DISPLAY (start it without a window manager), or on a\n"
    "private Xvfb, with the program resident in a hosted session and the requests sent by the\n"
    "generated proxy of GetUserDecision, beside a one-shot `zenity --question` on the same server:\n"
    "  request sent -> dialog window mapped (MapNotify); zenity: process spawned -> window mapped\n"
    "  click (XTEST) on Approve -> answer received; zenity: click on Yes -> process exit\n"
    "  resident memory (VmRSS) hidden and shown; zenity's while shown\n"
    "  program start (the manager's fork) -> ReadyToShowUI, by hl-appmgr's log time stamps\n"
    "The first request after a start is reported in a row of its own.";

constexpr const char* kExitCodes =
    "Exit codes: 0 measured (whether the targets are met is in the table); 1 usage error; 2 can't set\n"
    "up (no X server or XTEST, a service, the manager or the program doesn't start); 3 a measurement\n"
    "failed (no window, a wrong answer, zenity not answering yes).";

std::string LoadAverage() {
    std::ifstream in("/proc/loadavg");
    std::string one, five, fifteen;
    in >> one >> five >> fifteen;
    return one + " " + five + " " + fifteen;
}

int Fail(const std::string& error) {
    std::fprintf(stderr, "hl_access_arbiter_dialog_benchmark: %s\n", error.c_str());
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace access_arbiter::bench;
    CLI::App app(kDescription, "hl_access_arbiter_dialog_benchmark");
    app.footer(kExitCodes);
    BenchOptions options;
    std::string bin = HL_BIN_DIR;
    std::string log;
    bool privateDisplay = false;
    bool json = false;
    app.add_option("--bin", bin, "where hl-appmgr, hl-settingsd and access_arbiter are")->capture_default_str();
    app.add_option("--zenity", options.zenity, "the one-shot dialog; none: leave it out")->capture_default_str();
    app.add_option("--requests", options.requests, "requests per backend after the first; as many zenity runs")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--starts", options.starts, "program starts per backend")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    app.add_option("--backends", options.backends, "QT_QUICK_BACKEND values; 'default' unsets it")
        ->delimiter(',')
        ->capture_default_str();
    app.add_option("--settle-ms", options.settleMs,
                   "pause after a window is mapped before memory is read and it is clicked")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    app.add_option("--log", log, "write the manager's and the program's log there");
    app.add_flag("--xvfb", privateDisplay, "a private Xvfb even when DISPLAY is set");
    app.add_flag("--json", json, "print the results as JSON instead of a Markdown table");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 1;
    }
    if (options.zenity == "none") {
        options.zenity.clear();
    }

    hl::hosted_session::Session session(hl::hosted_session::SessionSetup::Beside(bin));
    std::unique_ptr<hl::hosted_session::XDisplay> display;
    const char* current = std::getenv("DISPLAY");
    if (privateDisplay || current == nullptr || *current == '\0') {
        std::string error;
        if (!(display = hl::hosted_session::XDisplay::StartXvfb(session.Directory() + "/xvfb.log", error))) {
            return Fail(error);
        }
        ::setenv("DISPLAY", display->Name().c_str(), 1);
    }
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    std::string error;
    auto x = XObserver::Connect(error);
    if (!x) {
        return Fail(error);
    }
    if (!session.StartSettings()) {
        return Fail("hl-settingsd did not start");
    }
    hos::logger::HOSLogger::Setup("HLBENCH", hos::logger::LogLevel::Off, nullptr);

    const std::string loadBefore = LoadAverage();
    ResultTable table;
    DialogBenchmark benchmark(options, std::move(x), session);
    const int code = benchmark.Run(table);
    if (!log.empty()) {
        std::error_code ignored;
        std::filesystem::copy_file(session.LogPath(), log, std::filesystem::copy_options::overwrite_existing,
                                   ignored);
    }
    if (code != 0) {
        std::fprintf(stderr, "hl_access_arbiter_dialog_benchmark: %s\n", benchmark.Error().c_str());
        return code;
    }
    table.SetContext("load average (1, 5, 15 min) before: " + loadBefore + "; after: " + LoadAverage());
    if (json) {
        table.PrintJson(stdout);
    } else {
        table.PrintMarkdown(stdout);
    }
    return 0;
}
