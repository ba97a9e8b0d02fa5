#pragma once

#include <string>

namespace hosipc::api_v1 {

// Converts between the exception in flight and a text.
class IStringExceptionConverter {
public:
    virtual ~IStringExceptionConverter() = default;
    // Called inside a catch block: stores the text of the exception being handled.
    virtual void CatchException(std::string& text) = 0;
    // Throws the exception that belongs to the text.
    virtual void ThrowException(const std::string& text) = 0;
};

}  // namespace hosipc::api_v1
