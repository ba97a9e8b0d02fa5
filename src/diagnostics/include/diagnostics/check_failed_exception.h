#pragma once
// Thrown by HCA_CHECK when a condition fails. Carries file and line of the check and the streamed
// text; it has no context, so no stack and no result code (ProcessException reports 0x8000004B).

#include <diagnostics/exception.h>
#include <diagnostics/stream_text.h>

#include <cstdint>

namespace hca {

class CheckFailedException : public ExceptionBase<CheckFailedException, Exception> {
public:
    CheckFailedException(const char* file, std::uint32_t line) noexcept;

    // Always "CheckFailedException".
    const char* what() const noexcept override;

    // Appends value, formatted by a fresh wide stream, to the text. No separator is added.
    template <typename T>
    const CheckFailedException& operator<<(const T& value) const {
        detail::AppendStreamed(m_text, value);
        return *this;
    }
};

}  // namespace hca
