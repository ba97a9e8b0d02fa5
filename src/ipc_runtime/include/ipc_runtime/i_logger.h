#pragma once

#include <ipc_runtime/i_log_message.h>

namespace hosipc::api_v1 {

// Sink of the runtime's own diagnostics (connection failures). Shared by every proxy of a provider.
class ILogger {
public:
    // The connector reports with kConnectionFailure.
    enum Verbosity : int { kConnectionFailure = 100 };

    virtual ~ILogger() = default;
    virtual void Print(Verbosity verbosity, ILogMessage& message) = 0;
};

}  // namespace hosipc::api_v1
