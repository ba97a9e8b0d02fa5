#pragma once
// An exception that carries a result code in the property "hca.result". Its context holds the
// message "Expression failed" and the call stack at the place that constructed it.

#include <diagnostics/exception.h>

#include <cstddef>
#include <cstdint>

namespace hca {

class ResultCodeException : public ExceptionBase<ResultCodeException, Exception> {
public:
    // Frames dropped from the recorded stack for a direct construction: this constructor.
    static constexpr std::size_t kOwnFrames = 1;

    // skipFrames: constructor frames to drop from the recorded stack, so that the top frame recorded
    // is the one that failed. The default fits a direct construction.
    ResultCodeException(const char* file, std::uint32_t line, int code, std::size_t skipFrames = kOwnFrames);

    // The text, then ": " if there was one, "0x" and the code in 8 lower-case hex digits, and the code's
    // text in parentheses: "Failed to create ...: 0x8000004b (Unspecified error)".
    text_t Text() const override;

    // The code's text alone, by facility; "Unknown result code" for other facilities.
    text_t ResultMessage() const;
};

}  // namespace hca
