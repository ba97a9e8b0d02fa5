#pragma once

#include <ipc_runtime/i_event_loop_error_handler.h>
#include <ipc_runtime/i_logger.h>
#include <ipc_runtime/i_retcode_exception_converter.h>
#include <ipc_runtime/i_string_exception_converter.h>

#include <memory>

namespace hosipc::api_v1 {

// What an application may choose for its IPC runtime. Each member may be null: a null member gets the
// runtime's default when a ResourceProvider is built from it.
struct ApplicationSettings {
    std::shared_ptr<IRetcodeExceptionConverter> retcodeConverter;
    std::shared_ptr<IStringExceptionConverter> stringConverter;
    std::shared_ptr<ILogger> logger;
    std::shared_ptr<IEventLoopErrorHandler> eventLoopErrorHandler;
};

}  // namespace hosipc::api_v1
