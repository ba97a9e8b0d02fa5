#include <ipc_runtime/default_logger.h>

#include <cstdio>

namespace hosipc_detail::api_v1 {

void DefaultLogger::Print(Verbosity /*verbosity*/, hosipc::api_v1::ILogMessage& message) {
    std::fputs(message.Text(), stderr);
}

}  // namespace hosipc_detail::api_v1
