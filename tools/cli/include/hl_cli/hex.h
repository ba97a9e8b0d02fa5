#pragma once
// Bytes and numbers as the tools read them from a command line or a file, and bytes as they print
// them: the one hex parser of the tools. Pure functions; any thread.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hl::cli {

// The value of one hex digit in either case, or -1.
int HexDigitValue(char c);

// Pairs of hex digits in either case, with an optional leading "0x". Space, tab, line breaks and ':'
// may stand between bytes (so FormatHex's output reads back), never inside one. "" gives no bytes.
// Nothing on an odd number of digits, a separator inside a byte, or another character.
std::optional<std::vector<unsigned char>> ParseHex(std::string_view text);

// Lower-case hex, a space after every 4 bytes and a line break (and two spaces) after every 32.
std::string FormatHex(const unsigned char* data, std::size_t size);

// A decimal or 0x-prefixed number no larger than max; nothing for a sign, other characters or a
// larger value.
std::optional<unsigned long> ParseNumber(std::string_view text, unsigned long max);

}  // namespace hl::cli
