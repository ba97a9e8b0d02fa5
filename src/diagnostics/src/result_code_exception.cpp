#include <diagnostics/result_code_exception.h>

#include <diagnostics/result_code.h>

#include <cstdio>

namespace hca {

namespace {
constexpr std::string_view kExpressionFailed = "Expression failed";

Exception::text_t Widen(std::string_view bytes) {
    // Static ASCII texts: each byte becomes one code unit.
    return Exception::text_t(bytes.begin(), bytes.end());
}
}  // namespace

[[gnu::noinline]] ResultCodeException::ResultCodeException(const char* file, std::uint32_t line, int code,
                                                           std::size_t skipFrames)
    : ExceptionBase(file, line, kExpressionFailed) {
    CaptureStack(skipFrames);
    SetResultCode(code);
}

Exception::text_t ResultCodeException::Text() const {
    text_t result = m_text;
    if (!result.empty()) {
        result += u": ";
    }
    char number[32];
    std::snprintf(number, sizeof(number), "0x%08x", static_cast<unsigned int>(get_result_code(*this)));
    result += Widen(number);
    result += u" (";
    result += ResultMessage();
    result += u")";
    return result;
}

Exception::text_t ResultCodeException::ResultMessage() const {
    return Widen(result_code_message(get_result_code(*this)));
}

}  // namespace hca
