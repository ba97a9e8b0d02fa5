#pragma once
// An hl-settings command line, read once in main:
//
//   hl-settings [--service NAME] [--wait MS] [--verbose] COMMAND [ARGS...] [--type TYPE] [--json]
//
// Options may stand anywhere; "--" ends them, so that a value may begin with "--". Each command
// checks the options and the number of arguments that apply to it.
//
// Pure data and a pure function; any thread.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace hl_settings {

inline constexpr const char* kDefaultService = "hl.settings_manager.MSmgr";
inline constexpr std::uint32_t kDefaultWaitMs = 1000;

struct Invocation {
    std::string service = kDefaultService;
    std::uint32_t waitMs = kDefaultWaitMs;
    bool verbose = false;
    bool help = false;
    bool json = false;
    std::optional<std::string> type;
    std::string command;
    std::vector<std::string> arguments;  // after the command, options taken out
};

// The invocation of the arguments after the program name; nullopt with error set for an unknown
// option or an option without its value.
std::optional<Invocation> ParseInvocation(const std::vector<std::string>& arguments, std::string& error);

}  // namespace hl_settings
