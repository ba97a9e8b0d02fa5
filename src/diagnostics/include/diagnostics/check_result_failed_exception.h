#pragma once
// Thrown by HCA_CHECK_RESULT when a result is negative. Carries file and line of the check, the
// failed code in "hca.result", the call stack from the failing frame on, and the streamed text.

#include <diagnostics/result_code_exception.h>
#include <diagnostics/stream_text.h>

#include <cstddef>
#include <cstdint>

namespace hca {

class CheckResultFailedException : public ExceptionBase<CheckResultFailedException, ResultCodeException> {
public:
    // This constructor adds one frame to those of ResultCodeException.
    static constexpr std::size_t kOwnFrames = ResultCodeException::kOwnFrames + 1;

    CheckResultFailedException(const char* file, std::uint32_t line, int code);

    // Always "CheckResultFailedException".
    const char* what() const noexcept override;

    // Appends value, formatted by a fresh wide stream, to the text. No separator is added.
    template <typename T>
    const CheckResultFailedException& operator<<(const T& value) const {
        detail::AppendStreamed(m_text, value);
        return *this;
    }
};

}  // namespace hca
