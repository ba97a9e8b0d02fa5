// hl_access_arbiter_dialog_benchmark: the dialog's latencies and memory beside a one-shot zenity
// dialog, on the X server of DISPLAY. `hl_access_arbiter_dialog_benchmark --help` says what it
// measures; scripts/bench-dialog.sh builds it and runs it on a private Xvfb.
#include <diagnostics/hos_logger.h>

#include "bench_options.h"
#include "dialog_benchmark.h"

#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

std::string LoadAverage() {
    std::ifstream in("/proc/loadavg");
    std::string one, five, fifteen;
    in >> one >> five >> fifteen;
    return one + " " + five + " " + fifteen;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace access_arbiter::bench;
    const ParsedBenchOptions parsed = ParseBenchOptions(std::vector<std::string>(argv + 1, argv + argc));
    if (!parsed.ok) {
        std::fprintf(stderr, "hl_access_arbiter_dialog_benchmark: %s\n\n%s", parsed.error.c_str(),
                     kBenchHelp);
        return 1;
    }
    if (parsed.options.help) {
        std::fputs(kBenchHelp, stdout);
        return 0;
    }
    std::string error;
    auto x = XObserver::Connect(error);
    if (!x) {
        std::fprintf(stderr, "hl_access_arbiter_dialog_benchmark: %s\n", error.c_str());
        return 2;
    }
    // A runtime directory of its own, so that no other session's manager or service is reached.
    std::string runtime = (std::filesystem::temp_directory_path() / "hl-bench-dialog-XXXXXX").string();
    if (::mkdtemp(runtime.data()) == nullptr) {
        std::fprintf(stderr, "hl_access_arbiter_dialog_benchmark: can't make a runtime directory\n");
        return 2;
    }
    ::setenv("HL_RUNTIME_DIR", runtime.c_str(), 1);
    hos::logger::HOSLogger::Setup("HLBENCH", hos::logger::LogLevel::Off, nullptr);
    std::FILE* log = nullptr;
    if (!parsed.options.log.empty() && (log = std::fopen(parsed.options.log.c_str(), "w")) == nullptr) {
        std::fprintf(stderr, "hl_access_arbiter_dialog_benchmark: can't write %s\n",
                     parsed.options.log.c_str());
        return 2;
    }

    const std::string loadBefore = LoadAverage();
    ResultTable table;
    DialogBenchmark benchmark(parsed.options, std::move(x), log);
    const int code = benchmark.Run(table);
    if (log != nullptr) {
        std::fclose(log);
    }
    std::error_code ignored;
    std::filesystem::remove_all(runtime, ignored);
    if (code != 0) {
        std::fprintf(stderr, "hl_access_arbiter_dialog_benchmark: %s\n", benchmark.Error().c_str());
        return code;
    }
    table.SetContext("load average (1, 5, 15 min) before: " + loadBefore + "; after: " + LoadAverage());
    if (parsed.options.json) {
        table.PrintJson(stdout);
    } else {
        table.PrintMarkdown(stdout);
    }
    return 0;
}
