#pragma once

#include <ipc_runtime/i_logger.h>

namespace hosipc_detail::api_v1 {

// Writes the message text to stderr as it is: the verbosity is ignored and no line feed is added.
class DefaultLogger final : public hosipc::api_v1::ILogger {
public:
    void Print(Verbosity verbosity, hosipc::api_v1::ILogMessage& message) override;
};

}  // namespace hosipc_detail::api_v1
