#include "hl_cli/hex.h"

#include <charconv>

namespace hl::cli {
int HexDigitValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

namespace {

bool IsSeparator(char c) {
    return c == ' ' || c == ':' || c == '\n' || c == '\t' || c == '\r';
}

}  // namespace

std::optional<std::vector<unsigned char>> ParseHex(std::string_view text) {
    if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") {
        text.remove_prefix(2);
    }
    std::vector<unsigned char> bytes;
    int high = -1;
    for (const char c : text) {
        if (IsSeparator(c)) {
            if (high >= 0) {
                return std::nullopt;
            }
            continue;
        }
        const int value = HexDigitValue(c);
        if (value < 0) {
            return std::nullopt;
        }
        if (high < 0) {
            high = value;
        } else {
            bytes.push_back(static_cast<unsigned char>(high * 16 + value));
            high = -1;
        }
    }
    if (high >= 0) {
        return std::nullopt;
    }
    return bytes;
}

std::string FormatHex(const unsigned char* data, std::size_t size) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        if (i > 0) {
            text += i % 32 == 0 ? "\n  " : (i % 4 == 0 ? " " : "");
        }
        text += kDigits[data[i] >> 4];
        text += kDigits[data[i] & 0xF];
    }
    return text;
}

std::optional<unsigned long> ParseNumber(std::string_view text, unsigned long max) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    }
    unsigned long value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size() || value > max) {
        return std::nullopt;
    }
    return value;
}

}  // namespace hl::cli
