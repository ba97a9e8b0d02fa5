#pragma once
// Values of settings as hl-settings reads them from its command line and prints them.
//
// Type names, one for each alternative of the value model, and "json" for a whole tree:
//   none, list, map, bool, i8, i16, i32, i64, double, timestamp, string, bytes, u8, u16, u32, u64
// Input forms: bool "true"/"false" (also "1"/"0"); integers in decimal, or hexadecimal with "0x",
// range-checked for their width; double as C reads it ("1.5", "-2e3", "inf", "nan"); string as it
// stands; bytes as hex digits, pairs optionally separated by spaces or colons ("de ad be ef");
// timestamp as the unsigned 64-bit number of its 8 bytes; none takes no value (an empty one);
// list and map take an empty value and make an empty container.
// json: any JSON document; an object becomes a map, an array a list, a string a string, true/false a
// bool, null none, an integer i64 (u64 when it only fits that), any other number a double.
//
// Pure functions; any thread.

#include <settings_manager/setting.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace hl_settings {

// "json" is not an alternative: it is the index past the sixteen.
inline constexpr std::size_t kJsonType = 16;

// The alternative of a type name, or kJsonType for "json"; nullopt for an unknown name.
std::optional<std::size_t> TypeFromName(std::string_view name);

// The type name of an alternative ("string" for 10); "invalid" for a valueless variant.
std::string TypeName(std::size_t index);

// Reads text as a value of the type; nullopt with error set (a sentence without the text) when it
// doesn't fit the type.
std::optional<settings_manager::Setting> ParseValue(std::size_t type, std::string_view text,
                                                    std::string& error);

// The value of one node as text, the form ParseValue reads back: a string as it stands, bytes in
// hex pairs separated by spaces, a double in the shortest form that reads back the same; a list
// "[N elements]", a map "{N entries}" ("[1 element]", "{1 entry}"), none "none".
std::string ValueText(const settings_manager::Setting& setting);

}  // namespace hl_settings
