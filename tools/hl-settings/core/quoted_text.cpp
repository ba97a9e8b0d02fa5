#include "core/quoted_text.h"

#include <hl_cli/hex.h>

#include <fmt/format.h>

namespace hl_settings {

namespace {

// The length of the valid UTF-8 sequence at text[i], or 0 when the byte there starts none.
std::size_t Utf8Length(std::string_view text, std::size_t i) {
    const auto byte = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byte(i);
    if (lead < 0x80) {
        return 1;
    }
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;   // no overlong form
        high = lead == 0xED ? 0x9F : 0xBF;  // no surrogate
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;  // nothing above U+10FFFF
    } else {
        return 0;
    }
    if (i + length > text.size()) {
        return 0;
    }
    if (byte(i + 1) < low || byte(i + 1) > high) {
        return 0;
    }
    for (std::size_t k = 2; k < length; ++k) {
        if (byte(i + k) < 0x80 || byte(i + k) > 0xBF) {
            return 0;
        }
    }
    return length;
}

// The number of `digits` hex digits at text[pos], or nothing.
std::optional<unsigned> ReadHex(std::string_view text, std::size_t pos, std::size_t digits) {
    if (pos + digits > text.size()) {
        return std::nullopt;
    }
    unsigned value = 0;
    for (std::size_t k = 0; k < digits; ++k) {
        const int digit = hl::cli::HexDigitValue(text[pos + k]);
        if (digit < 0) {
            return std::nullopt;
        }
        value = value * 16 + static_cast<unsigned>(digit);
    }
    return value;
}

void AppendUtf8(std::string& out, unsigned code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

}  // namespace

std::string Quote(std::string_view text) {
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        const std::size_t length = Utf8Length(text, i);
        if (length == 0) {
            out += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
            ++i;
            continue;
        }
        if (length > 1) {
            out.append(text.substr(i, length));
            i += length;
            continue;
        }
        switch (c) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '\n': out += "\\n"; break;
            case '\t': out += "\\t"; break;
            case '\r': out += "\\r"; break;
            case '\b': out += "\\b"; break;
            case '\f': out += "\\f"; break;
            default:
                if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
                    out += fmt::format("\\u{:04x}", static_cast<unsigned char>(c));
                } else {
                    out += c;
                }
        }
        ++i;
    }
    out += '"';
    return out;
}

std::optional<std::string> Unquote(std::string_view text, std::size_t& pos) {
    if (pos >= text.size() || text[pos] != '"') {
        return std::nullopt;
    }
    std::string out;
    for (std::size_t i = pos + 1; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            pos = i + 1;
            return out;
        }
        if (c != '\\') {
            out += c;
            continue;
        }
        if (++i >= text.size()) {
            return std::nullopt;
        }
        switch (text[i]) {
            case '"': out += '"'; break;
            case '\\': out += '\\'; break;
            case '/': out += '/'; break;
            case 'n': out += '\n'; break;
            case 't': out += '\t'; break;
            case 'r': out += '\r'; break;
            case 'b': out += '\b'; break;
            case 'f': out += '\f'; break;
            case 'x': {
                const auto byte = ReadHex(text, i + 1, 2);
                if (!byte) {
                    return std::nullopt;
                }
                out += static_cast<char>(*byte);
                i += 2;
                break;
            }
            case 'u': {
                const auto code = ReadHex(text, i + 1, 4);
                if (!code || (*code >= 0xD800 && *code <= 0xDFFF)) {
                    return std::nullopt;
                }
                AppendUtf8(out, *code);
                i += 4;
                break;
            }
            default:
                return std::nullopt;
        }
    }
    return std::nullopt;
}

bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = Utf8Length(text, i);
        if (length == 0) {
            return false;
        }
        i += length;
    }
    return true;
}

}  // namespace hl_settings
