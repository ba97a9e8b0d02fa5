#pragma once
// The formatting behind the streaming operator of the check exceptions: one value through a fresh
// wide string stream in its default state, converted to UTF-16 and appended. Byte strings are widened
// character by character, as a wide stream does with a const char*.

#include <diagnostics/text_cast.h>

#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

namespace hca::detail {

template <typename T>
void AppendStreamed(std::u16string& target, const T& value) {
    std::wostringstream stream;
    if constexpr (std::is_convertible_v<const T&, std::string_view> && !std::is_same_v<T, std::nullptr_t>) {
        if constexpr (std::is_pointer_v<T>) {
            if (value == nullptr) {
                return;  // a wide stream writes nothing for a null string either
            }
        }
        const std::string_view bytes(value);
        for (const char c : bytes) {
            stream << c;
        }
    } else {
        stream << value;
    }
    target += text::Cast<std::u16string>(std::wstring_view(stream.str()));
}

}  // namespace hca::detail
