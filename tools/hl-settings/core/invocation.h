#pragma once
// An hl-settings command line as main's parser fills it in (main.cpp):
//
//   hl-settings [--service NAME] [--wait MS] [--verbose] COMMAND [PATH [VALUE]] [--type TYPE] [--json]
//
// Each command reads the fields that apply to it.
//
// Plain data; any thread.

#include <cstdint>
#include <optional>
#include <string>

namespace hl_settings {

inline constexpr const char* kDefaultService = "hl.settings_manager.MSmgr";
inline constexpr std::uint32_t kDefaultWaitMs = 1000;

struct Invocation {
    std::string service = kDefaultService;
    std::uint32_t waitMs = kDefaultWaitMs;
    bool verbose = false;
    bool json = false;
    std::optional<std::string> type;
    std::string path;                  // "" for the root where PATH is optional
    std::optional<std::string> value;  // set's VALUE
    std::optional<std::string> defaults;  // reset's --defaults FILE
};

}  // namespace hl_settings
