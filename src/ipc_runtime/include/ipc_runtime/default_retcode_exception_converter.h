#pragma once

#include <ipc_runtime/i_retcode_exception_converter.h>

namespace hosipc_detail::api_v1 {

// Knows no exception: every exception becomes kUnknownExceptionCode, and no code throws.
class DefaultRetcodeExceptionConverter final : public hosipc::api_v1::IRetcodeExceptionConverter {
public:
    static constexpr int kUnknownExceptionCode = static_cast<int>(0x9000000dU);

    void CatchException(int& code) override;
    void ThrowException(int code) override;
};

}  // namespace hosipc_detail::api_v1
