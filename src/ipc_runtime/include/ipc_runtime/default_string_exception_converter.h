#pragma once

#include <ipc_runtime/i_string_exception_converter.h>

namespace hosipc_detail::api_v1 {

// Catching gives an empty text; throwing raises std::runtime_error with the text.
class DefaultStringExceptionConverter final : public hosipc::api_v1::IStringExceptionConverter {
public:
    void CatchException(std::string& text) override;
    void ThrowException(const std::string& text) override;
};

}  // namespace hosipc_detail::api_v1
