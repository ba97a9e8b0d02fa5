#include <ipc_runtime/default_retcode_exception_converter.h>

namespace hosipc_detail::api_v1 {

void DefaultRetcodeExceptionConverter::CatchException(int& code) {
    code = kUnknownExceptionCode;
}

void DefaultRetcodeExceptionConverter::ThrowException(int /*code*/) {}

}  // namespace hosipc_detail::api_v1
