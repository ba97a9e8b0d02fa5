#pragma once
// A settings path as hl-settings reads it from its command line: the text form of settings paths
// ("locale/language", the final slash optional), or "/" or "" for the root of the store.
//
// Pure function; any thread.

#include <uvc/path.h>

#include <optional>
#include <string>
#include <string_view>

namespace hl_settings {

// The path of text; nullopt with error set (a sentence naming the text) when it isn't a valid path.
std::optional<uvc::Path> ParsePathArgument(std::string_view text, std::string& error);

}  // namespace hl_settings
