#pragma once
// The command-line core of every tool: CLI11 parses, and this adds the habits the tools share.
//   - --help, and --version printing "TOOL VERSION" (the project's version);
//   - --opt=value and --opt value alike, and -- ends the options;
//   - a usage error names what was wrong, then "Try 'TOOL --help' for more information.", on
//     standard error, and the tool exits 2 (kExitUsage);
//   - the tool's exit-code table closes its --help, so that help2man puts it in the man page too;
//   - colour only on a terminal, never when NO_COLOR is set or TERM is "dumb".
// Data goes to standard output and errors to standard error, always.
//
// One Tool per process, used from main's thread.

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hl::cli {

inline constexpr int kExitUsage = 2;

// One row of a tool's exit-code table.
struct ExitCode {
    int code;
    std::string meaning;
};

class Tool {
public:
    // name: the command's name, as people type it ("hl-ask"). description: the paragraph --help
    // shows under the usage line. exitCodes: the table --help ends with; kExitUsage must be in it.
    Tool(std::string name, std::string description, std::vector<ExitCode> exitCodes);

    // The parser, for the tool to add its options and subcommands to.
    CLI::App& App() { return m_app; }

    // Parses the command line. nullopt: go on with the parsed values. Otherwise the status main
    // returns: 0 after --help or --version (printed on standard output), kExitUsage after a usage
    // error (printed on standard error).
    std::optional<int> Parse(int argc, const char* const* argv);

    // Writes "TOOL: message" on standard error and returns code.
    int Fail(int code, std::string_view message) const;

    // Writes "TOOL: message" and the pointer to --help on standard error; returns kExitUsage. For
    // what only the tool can tell is wrong (two options that exclude each other, a bad JSON text).
    int UsageError(std::string_view message) const;

    const std::string& Name() const { return m_name; }

    // The exit-code table as --help prints it.
    static std::string ExitCodeTable(const std::vector<ExitCode>& exitCodes);

private:
    std::string m_name;
    CLI::App m_app;
};

enum class Color { Green, Red, Yellow, Bold };

// Whether colour may be written to the descriptor fd: a terminal, NO_COLOR unset or empty, TERM not
// "dumb".
bool ColorEnabled(int fd);

// text in the colour when enabled, else text as it is.
std::string Paint(std::string_view text, Color color, bool enabled);

}  // namespace hl::cli
