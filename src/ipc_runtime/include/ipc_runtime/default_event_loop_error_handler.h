#pragma once

#include <ipc_runtime/i_event_loop_error_handler.h>

namespace hosipc::api_v1 {

// Ignores every error of a server loop and answers 0.
class DefaultEventLoopErrorHandler final : public IEventLoopErrorHandler {
public:
    int OnCommunicationError(const EventLoopErrorDetails& details) override;
    int OnResourcesError(const EventLoopErrorDetails& details) override;
};

}  // namespace hosipc::api_v1
