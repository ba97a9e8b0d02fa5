// The text form of a registry entry: the lines "server=...", "endpoint=..." and "pid=...", each
// ended by '\n'. Free functions; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <platform/registry_entry.h>

namespace hos::platform {

// The file contents of `entry` (its type is the file's name, not part of the text).
std::string FormatRegistryEntry(const RegistryEntry& entry);

// Reads the entry of `type` from `text`: lines split at '\n' and at the first '='; unknown keys and
// lines without '=' are ignored; a key given twice keeps its last value; the pid is a decimal number
// (0 when missing, not above 0, or not only digits that fit). Nothing when server or endpoint is missing or
// not a valid platform name.
std::optional<RegistryEntry> ParseRegistryEntry(std::string_view type, std::string_view text);

}  // namespace hos::platform
