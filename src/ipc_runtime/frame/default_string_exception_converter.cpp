#include <ipc_runtime/default_string_exception_converter.h>

#include <stdexcept>

namespace hosipc_detail::api_v1 {

void DefaultStringExceptionConverter::CatchException(std::string& text) {
    text.clear();
}

void DefaultStringExceptionConverter::ThrowException(const std::string& text) {
    throw std::runtime_error(text);
}

}  // namespace hosipc_detail::api_v1
