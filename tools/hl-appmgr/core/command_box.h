// The drop box through which `hl-appmgr command` hands a command to the running manager:
// <runtime directory>/appmgr/commands/. Each command is one file, written under a hidden temporary
// name and renamed into place, holding three lines: application, command name, decimal value.
// The manager takes the files in name order (names begin with the time in ns) and removes them.
// Thread: free functions, any thread; concurrent writers never collide (names carry pid and time).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hl_appmgr {

struct Command {
    std::string app;
    std::string name;
    std::int64_t value = 0;
};

std::string SerializeCommand(const Command& command);
std::optional<Command> ParseCommand(std::string_view text);

// <runtime>/appmgr, created (0700) when create is true. Empty when it cannot be made.
std::string ManagerDirectory(bool create);
// Writes one command into the box; false with errno-based text in *error on failure.
bool PostCommand(const Command& command, std::string* error);
// Takes every command waiting in the box, oldest first; unreadable files are dropped and named in
// *rejected.
std::vector<Command> TakeCommands(std::vector<std::string>* rejected);

}  // namespace hl_appmgr
