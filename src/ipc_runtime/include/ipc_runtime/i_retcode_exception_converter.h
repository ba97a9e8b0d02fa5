#pragma once

namespace hosipc::api_v1 {

// Converts between the exception in flight and a result code.
class IRetcodeExceptionConverter {
public:
    virtual ~IRetcodeExceptionConverter() = default;
    // Called inside a catch block: stores the code of the exception being handled.
    virtual void CatchException(int& code) = 0;
    // Throws the exception that belongs to the code, if any.
    virtual void ThrowException(int code) = 0;
};

}  // namespace hosipc::api_v1
