#pragma once
// Conversions between the byte strings of the C library's locale, wide strings and the UTF-16 text
// that exceptions hold. Each character is converted with a zeroed conversion state, so nothing is
// carried from one code point to the next. Thread-safe (no shared state of its own).
//
// The To... functions report through a result code: 0, kInvalidArgument for a character that the
// locale rejects, kOutOfMemory when the result can't be allocated; out is then unspecified.
// Cast turns those failures into std::bad_alloc and std::bad_cast.

#include <string>
#include <string_view>

namespace hca::text {

// UTF-16 -> bytes with wcrtomb per code point. A valid surrogate pair is joined into one code point,
// a lone surrogate is passed on as it stands; a zero code unit gives a zero byte.
int Utf16ToBytes(std::u16string_view source, std::string& out);
// Bytes -> UTF-16 with mbrtowc; code points from 0x10000 become surrogate pairs.
int BytesToUtf16(std::string_view source, std::u16string& out);
// Wide -> UTF-16; code points from 0x10000 become surrogate pairs, above 0x10FFFF are rejected.
int WideToUtf16(std::wstring_view source, std::u16string& out);

template <typename To>
To Cast(std::u16string_view source);
template <typename To>
To Cast(std::string_view source);
template <typename To>
To Cast(std::wstring_view source);

template <>
std::string Cast<std::string>(std::u16string_view source);
template <>
std::u16string Cast<std::u16string>(std::string_view source);
template <>
std::u16string Cast<std::u16string>(std::wstring_view source);

}  // namespace hca::text
