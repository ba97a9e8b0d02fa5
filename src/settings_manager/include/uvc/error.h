#pragma once
// The failures of the value-container library.
//
// uvc::Result, a pair of a result code and a text, is the library's general result: Serialize and
// Deserialize return it, and it may also be thrown. Formatted for a log (code_text_pair_formatter.h)
// only the code's text is printed and the pair's text is dropped on purpose.
//
// uvc::Error is what SetItem and the raw item codec throw: a logic_error with a result code. The three
// constant errors below are thrown as copies. All constants are built before main.

#include <diagnostics/code_text_pair_formatter.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace uvc {

using Result = std::pair<int, std::string>;

class Error : public std::logic_error {
public:
    Error(std::int32_t code, const std::string& text) : std::logic_error(text), m_code(code) {}

    std::int32_t Code() const { return m_code; }

private:
    std::int32_t m_code;
};

// 0x8000004D "uvc: Item with given id already exists"
extern const Error ErrorItemExists;
// 0x8000004C "uvc: Item with given id does not exist"
extern const Error ErrorItemNotFound;
// 0x8000004A "uvc: Path or id does not correspond to contained item"
extern const Error ErrorItemMismatch;

// Code 0 with an empty text.
extern const Result ResultOk;

}  // namespace uvc
