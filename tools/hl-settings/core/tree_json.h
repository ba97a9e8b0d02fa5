#pragma once
// Settings trees in JSON (nlohmann::json), both ways.
//
// The typed form, printed by `tree --json` and `get --json`: every node is an object
//   {"type": "<type name>", "flag": <bool>, "value": <value>}
// where value is, for a map, an object of child nodes by key; for a list, an array of child nodes;
// for none, null; for bytes, a string of hex pairs separated by spaces; for a timestamp, its
// unsigned 64-bit number; for the other scalars the JSON number, string or bool (a double that isn't
// finite becomes null). A string that is not valid UTF-8 has its invalid bytes as U+FFFD in "value"
// and all its bytes in "bytes", hex pairs as for bytes. The root object also has "path", the text form of its path.
//
// The plain form, read by `set --type json`: see value_text.h.
//
// Pure functions; any thread.

#include <settings_manager/setting.h>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace hl_settings {

// The typed form of a node and its children.
nlohmann::json TypedJson(const settings_manager::Setting& setting);

// The JSON text of a document (indent as nlohmann's dump takes it). Bytes of a string that are not
// valid UTF-8 become U+FFFD, so the text is always valid JSON; TypedJson keeps such a string's bytes
// beside it.
std::string JsonText(const nlohmann::json& document, int indent = -1);

// A tree from the plain form; nullopt with error set for a number that fits no alternative.
std::optional<settings_manager::Setting> SettingFromPlainJson(const nlohmann::json& document,
                                                              std::string& error);

}  // namespace hl_settings
