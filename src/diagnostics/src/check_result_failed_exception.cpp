#include <diagnostics/check_result_failed_exception.h>

namespace hca {

[[gnu::noinline]] CheckResultFailedException::CheckResultFailedException(const char* file, std::uint32_t line,
                                                                         int code)
    : ExceptionBase(file, line, code, kOwnFrames) {}

const char* CheckResultFailedException::what() const noexcept {
    return "CheckResultFailedException";
}

}  // namespace hca
