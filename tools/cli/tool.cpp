#include "hl_cli/tool.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace hl::cli {

namespace {

// The usage line first, as GNU tools and help2man have it, then the description and the rest.
class UsageFirst : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        if (mode == CLI::AppFormatMode::Sub) {
            return make_expanded(app);
        }
        std::string text = make_usage(app, std::move(name)) + "\n" + make_description(app);
        text += make_positionals(app) + make_groups(app, mode) + make_subcommands(app, mode) + "\n" + make_footer(app);
        return text;
    }
};

}  // namespace

Tool::Tool(std::string name, std::string description, std::vector<ExitCode> exitCodes)
    : m_name(std::move(name)), m_app(std::move(description), m_name) {
    auto formatter = std::make_shared<UsageFirst>();
    formatter->column_width(30);
    m_app.formatter(formatter);
    m_app.set_help_flag("-h,--help", "print this help and exit");
    m_app.set_version_flag("--version", m_name + " " + HL_VERSION, "print the version and exit");
    m_app.footer(ExitCodeTable(exitCodes));
}

std::optional<int> Tool::Parse(int argc, const char* const* argv) {
    try {
        m_app.parse(argc, argv);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        const std::string name = error.get_name();
        if (name == "CallForHelp" || name == "CallForAllHelp" || name == "CallForVersion") {
            m_app.exit(error, std::cout, std::cerr);
            return 0;
        }
        return UsageError(error.what());
    }
}

int Tool::Fail(int code, std::string_view message) const {
    std::cerr << m_name << ": " << message << std::endl;
    return code;
}

int Tool::UsageError(std::string_view message) const {
    std::cerr << m_name << ": " << message << "\nTry '" << m_name << " --help' for more information." << std::endl;
    return kExitUsage;
}

std::string Tool::ExitCodeTable(const std::vector<ExitCode>& exitCodes) {
    std::string text = "Exit status:";
    for (const auto& row : exitCodes) {
        text += "\n  " + std::to_string(row.code) + (row.code < 10 ? "    " : row.code < 100 ? "   " : "  ") + row.meaning;
    }
    return text;
}

bool ColorEnabled(int fd) {
    const char* noColor = std::getenv("NO_COLOR");
    const char* term = std::getenv("TERM");
    return ::isatty(fd) == 1 && (noColor == nullptr || *noColor == '\0') &&
           (term == nullptr || std::string_view(term) != "dumb");
}

std::string Paint(std::string_view text, Color color, bool enabled) {
    if (!enabled) {
        return std::string(text);
    }
    const char* start = "";
    switch (color) {
        case Color::Green: start = "\033[32m"; break;
        case Color::Red: start = "\033[31m"; break;
        case Color::Yellow: start = "\033[33m"; break;
        case Color::Bold: start = "\033[1m"; break;
    }
    return std::string(start) + std::string(text) + "\033[0m";
}

}  // namespace hl::cli
