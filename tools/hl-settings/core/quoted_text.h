#pragma once
// Strings as hl-settings prints them in text and reads them back from a dump: between double
// quotes, with the escapes of a JSON string (\" \\ \n \t \r \b \f and \u00XX for the other control
// characters), UTF-8 as it stands, and each byte that is not part of valid UTF-8 as \xHH, which JSON
// doesn't have, so any byte string prints and reads back unchanged.
//
// Pure functions; any thread.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace hl_settings {

// text quoted and escaped as above.
std::string Quote(std::string_view text);

// Reads one quoted string starting at text[pos] (the opening quote); on success pos is behind the
// closing quote. Any \uXXXX outside the surrogates is read as that code point in UTF-8. nullopt for
// a missing quote, an unknown or short escape, or a surrogate.
std::optional<std::string> Unquote(std::string_view text, std::size_t& pos);

// True when text is valid UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
bool IsUtf8(std::string_view text);

}  // namespace hl_settings
