// The dialog benchmark's command line.
#pragma once

#include <string>
#include <vector>

namespace access_arbiter::bench {

struct BenchOptions {
    std::string appmgr;                             // hl-appmgr
    std::string program;                            // access_arbiter
    std::string settingsd;                          // hl-settingsd; empty: none started
    std::string zenity = "zenity";                  // empty: no zenity rows
    int requests = 200;                             // measured requests per backend, after the first one
    int starts = 30;                                // program starts per backend
    std::vector<std::string> backends{"software"};  // QT_QUICK_BACKEND values; "default" unsets it
    int settleMs = 200;  // pause after a map before memory is read and the click sent
    std::string log;     // file for the manager's and the program's lines
    bool json = false;
    bool help = false;
};

struct ParsedBenchOptions {
    bool ok = false;
    std::string error;
    BenchOptions options;
};

ParsedBenchOptions ParseBenchOptions(const std::vector<std::string>& arguments);

extern const char* const kBenchHelp;

}  // namespace access_arbiter::bench
