#include "bench_options.h"

#include <charconv>

namespace access_arbiter::bench {

const char* const kBenchHelp =
    "Usage: hl_access_arbiter_dialog_benchmark --appmgr PATH --program PATH [--settingsd PATH]\n"
    "           [--zenity PATH|none] [--requests N] [--starts N] [--backends LIST] [--settle-ms MS] [--log "
    "FILE] [--json]\n"
    "\n"
    "Measures the dialog on the X server of DISPLAY (start it without a window manager), with the\n"
    "program resident under hl-appmgr and the requests sent by the generated proxy of\n"
    "GetUserDecision, beside a one-shot `zenity --question` on the same server:\n"
    "  request sent -> dialog window mapped (MapNotify); zenity: process spawned -> window mapped\n"
    "  click (XTEST) on Approve -> answer received; zenity: click on Yes -> process exit\n"
    "  resident memory (VmRSS) hidden and shown; zenity's while shown\n"
    "  program start (the manager's fork) -> ReadyToShowUI, by hl-appmgr's log time stamps\n"
    "The first request after a start is reported in a row of its own. It uses a private\n"
    "HL_RUNTIME_DIR.\n"
    "\n"
    "  --appmgr PATH     hl-appmgr\n"
    "  --program PATH    access_arbiter\n"
    "  --settingsd PATH  hl-settingsd, started once as the session's settings service (the program\n"
    "                    reads its language there)\n"
    "  --zenity PATH     the one-shot dialog (default: zenity from PATH; none: leave it out)\n"
    "  --requests N      requests per backend after the first (default 200); as many zenity runs\n"
    "  --starts N        program starts per backend (default 30)\n"
    "  --backends LIST   comma-separated QT_QUICK_BACKEND values; 'default' unsets it (default software)\n"
    "  --settle-ms MS    pause after a window is mapped before memory is read and it is clicked (200)\n"
    "  --log FILE        write the manager's and the program's log lines there\n"
    "  --json            print the results as JSON instead of a Markdown table\n"
    "\n"
    "Exit codes: 0 measured (whether the targets are met is in the table); 1 usage error; 2 can't set\n"
    "up (no X server or XTEST, a service, the manager or the program doesn't start); 3 a measurement\n"
    "failed (no window, a wrong answer, zenity not answering yes).\n";

namespace {

bool ParseCount(const std::string& text, int minimum, int& value) {
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    return failure == std::errc() && end == text.data() + text.size() && value >= minimum;
}

std::vector<std::string> SplitList(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t comma = text.find(',', begin);
        parts.push_back(text.substr(begin, comma - begin));
        if (comma == std::string::npos) {
            return parts;
        }
        begin = comma + 1;
    }
}

}  // namespace

ParsedBenchOptions ParseBenchOptions(const std::vector<std::string>& arguments) {
    ParsedBenchOptions parsed;
    BenchOptions& options = parsed.options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        if (name == "--help" || name == "-h") {
            options.help = true;
            parsed.ok = true;
            return parsed;
        }
        if (name == "--json") {
            options.json = true;
            continue;
        }
        if (i + 1 >= arguments.size()) {
            parsed.error = name.rfind("--", 0) == 0 ? name + " needs a value" : "unknown argument " + name;
            return parsed;
        }
        const std::string& value = arguments[++i];
        bool good = true;
        if (name == "--appmgr") {
            options.appmgr = value;
        } else if (name == "--program") {
            options.program = value;
        } else if (name == "--settingsd") {
            options.settingsd = value;
        } else if (name == "--zenity") {
            options.zenity = value == "none" ? std::string() : value;
        } else if (name == "--requests") {
            good = ParseCount(value, 1, options.requests);
        } else if (name == "--starts") {
            good = ParseCount(value, 0, options.starts);
        } else if (name == "--settle-ms") {
            good = ParseCount(value, 0, options.settleMs);
        } else if (name == "--backends") {
            options.backends = SplitList(value);
            for (const std::string& backend : options.backends) {
                good = good && !backend.empty();
            }
        } else if (name == "--log") {
            options.log = value;
        } else {
            parsed.error = "unknown argument " + name;
            return parsed;
        }
        if (!good) {
            parsed.error = "bad value for " + name + ": " + value;
            return parsed;
        }
    }
    if (options.appmgr.empty() || options.program.empty()) {
        parsed.error = "--appmgr and --program are required";
        return parsed;
    }
    parsed.ok = true;
    return parsed;
}

}  // namespace access_arbiter::bench
