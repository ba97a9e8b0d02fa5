#pragma once
// The two checks of the program. Both capture file and line at the check and take streamed text:
//
//   HCA_CHECK(factory != nullptr) << "PaletteFactory is nullptr";
//       throws hca::CheckFailedException when the condition is false;
//   HCA_CHECK_RESULT(rc) << "Failed to create non persistent settings manager";
//       throws hca::CheckResultFailedException when rc (an int result code) is negative, with the
//       code in "hca.result" and the stack recorded from the failing frame on.
//
// The condition or result is evaluated exactly once. The stream expression is only evaluated when
// the check fails.

#include <diagnostics/check_failed_exception.h>
#include <diagnostics/check_result_failed_exception.h>

namespace hca::detail {

// Receives the finished exception (after all "<<") and throws its copy.
struct CheckThrower {
    template <typename E>
    [[noreturn]] void operator=(const E& e) const {
        throw e;
    }
};

}  // namespace hca::detail

#define HCA_CHECK(condition) \
    while (!(condition)) ::hca::detail::CheckThrower{} = ::hca::CheckFailedException(__FILE__, __LINE__)

#define HCA_CHECK_RESULT(expression)                                                         \
    for (const int hcaCheckedResult_ = static_cast<int>(expression); hcaCheckedResult_ < 0;) \
    ::hca::detail::CheckThrower{} = ::hca::CheckResultFailedException(__FILE__, __LINE__, hcaCheckedResult_)
