#include "hex.h"

#include <cstdlib>

namespace hl_ipc {
namespace {

int DigitValue(char c) {
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

}  // namespace

std::optional<std::vector<unsigned char>> ParseHex(std::string_view text) {
    if (text == "-") {
        return std::vector<unsigned char>{};
    }
    if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") {
        text.remove_prefix(2);
    }
    std::vector<unsigned char> bytes;
    int high = -1;
    for (const char c : text) {
        // Any white space, so that hex printed over several lines reads back.
        if (c == ' ' || c == ':' || c == '\n' || c == '\t' || c == '\r') {
            continue;
        }
        const int value = DigitValue(c);
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

std::string FormatHex(const unsigned char* data, size_t size) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < size; ++i) {
        if (i > 0) {
            text += i % 32 == 0 ? "\n  " : (i % 4 == 0 ? " " : "");
        }
        text += kDigits[data[i] >> 4];
        text += kDigits[data[i] & 0xF];
    }
    return text;
}

std::optional<unsigned long> ParseNumber(std::string_view text, unsigned long max) {
    if (text.empty()) {
        return std::nullopt;
    }
    const std::string copy(text);
    char* end = nullptr;
    const unsigned long value = std::strtoul(copy.c_str(), &end, 0);
    if (end == nullptr || *end != '\0' || value > max || copy[0] == '-') {
        return std::nullopt;
    }
    return value;
}

}  // namespace hl_ipc
