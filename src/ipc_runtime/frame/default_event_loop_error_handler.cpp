#include <ipc_runtime/default_event_loop_error_handler.h>

namespace hosipc::api_v1 {

int DefaultEventLoopErrorHandler::OnCommunicationError(const EventLoopErrorDetails& /*details*/) {
    return 0;
}

int DefaultEventLoopErrorHandler::OnResourcesError(const EventLoopErrorDetails& /*details*/) {
    return 0;
}

}  // namespace hosipc::api_v1
