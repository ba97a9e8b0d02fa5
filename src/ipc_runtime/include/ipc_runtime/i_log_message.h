#pragma once

namespace hosipc::api_v1 {

// A log text formatted on demand.
class ILogMessage {
public:
    virtual ~ILogMessage() = default;
    // The whole text, owned by the message; valid while the message lives.
    virtual const char* Text() = 0;
    // Formats into the caller's buffer (at most size bytes, terminator included) and returns it.
    virtual char* Text(char* buffer, unsigned long size) = 0;
    // Size of the formatted text without terminator.
    virtual unsigned long FormattedSize() = 0;
};

}  // namespace hosipc::api_v1
