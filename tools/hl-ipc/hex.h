// Hex text to bytes and back, for the command line.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hl_ipc {

// Parses pairs of hex digits; white space (as FormatHex prints it), ':' and a leading "0x" are
// ignored; "" and "-" give no bytes.
// Nothing on an odd number of digits or another character.
std::optional<std::vector<unsigned char>> ParseHex(std::string_view text);
// Lower-case hex, a space after every 4 bytes and a line break after every 32.
std::string FormatHex(const unsigned char* data, size_t size);
// A decimal or 0x-prefixed number that fits `max`.
std::optional<unsigned long> ParseNumber(std::string_view text, unsigned long max);

}  // namespace hl_ipc
