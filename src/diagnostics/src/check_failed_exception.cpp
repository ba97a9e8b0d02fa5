#include <diagnostics/check_failed_exception.h>

namespace hca {

CheckFailedException::CheckFailedException(const char* file, std::uint32_t line) noexcept
    : ExceptionBase(file, line) {}

const char* CheckFailedException::what() const noexcept {
    return "CheckFailedException";
}

}  // namespace hca
