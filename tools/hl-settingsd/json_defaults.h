#pragma once
// The defaults file of the non-persistent service: one JSON object, read with nlohmann-json, that
// becomes the settings tree. Objects become maps, arrays lists, strings strings, true/false bools,
// integers 64-bit integers (unsigned above the signed range), other numbers doubles, null an empty
// node. Keys must be valid setting ids (a name that doesn't begin with a digit and holds none of
// / \ " ' ` % _ and space).
//
//   {"locale": {"language": "en-US"}}

#include <settings_manager/setting.h>

#include <string>

namespace hl_settingsd {

// Throws std::runtime_error with a text that names the file and the fault.
settings_manager::Setting ReadJsonDefaults(const std::string& file);
// The same from the text itself; source names it in the error texts.
settings_manager::Setting ParseJsonDefaults(const std::string& text, const std::string& source);

}  // namespace hl_settingsd
