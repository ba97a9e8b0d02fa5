#pragma once

namespace hosipc::api_v1 {

// What a server loop knows about a failure it met.
struct EventLoopErrorDetails {
    int code = 0;
};

// Told of the errors of a server loop. The operations deliberately stand before the destructor.
class IEventLoopErrorHandler {
public:
    virtual int OnCommunicationError(const EventLoopErrorDetails& details) = 0;
    virtual int OnResourcesError(const EventLoopErrorDetails& details) = 0;
    virtual ~IEventLoopErrorHandler() = default;
};

}  // namespace hosipc::api_v1
