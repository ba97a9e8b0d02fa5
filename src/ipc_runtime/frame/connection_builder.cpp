#include <ipc_runtime/connection_builder.h>

#include <ipc_runtime/printf_log_message.h>

#include <platform/kn_channel.h>

namespace hosipc::api_v1 {

DynamicChannelCalls PlatformDynamicChannelCalls() {
    return DynamicChannelCalls{&KnCmConnect, &KnHandleClose};
}

std::int32_t ConnectionBuilder<ConnectViaDynamicChannel>::Connect(
    hosipc_detail::api_v1::EndpointHandle& endpoint,
    const hosipc_detail::api_v1::SharedResourceProvider& resources) const {
    unsigned int handle = hosipc_detail::api_v1::EndpointHandle::kInvalidHandle;
    unsigned int riid = hosipc_detail::api_v1::EndpointHandle::kInvalidRiid;
    const std::uint32_t timeout = m_noLimit ? kNoLimitTimeout : m_timeoutMs;
    const char* server = m_server.data();
    const char* service = m_service.data();

    int result = m_calls.connect(server, service, timeout, &handle, &riid);
    if (result != 0) {
        hosipc_detail::api_v1::PrintfLogMessage<const char*, const char*, int&> message(
            "Failed to connect to \"%s\":\"%s\" with rc = %d\n", server, service, result);
        resources->GetLogger()->Print(ILogger::kConnectionFailure, message);
        return result;
    }
    if (riid > UINT16_MAX) {
        hosipc_detail::api_v1::PrintfLogMessage<const char*, const char*, unsigned int&> message(
            "Invalid riid for \"%s\":\"%s\" because %u > UINT16_MAX\n", server, service, riid);
        resources->GetLogger()->Print(ILogger::kConnectionFailure, message);
        if (handle != hosipc_detail::api_v1::EndpointHandle::kInvalidHandle) {
            m_calls.close(handle);
        }
        return kInvalidRiidResult;
    }
    endpoint.Adopt(handle, static_cast<std::uint16_t>(riid));
    return 0;
}

}  // namespace hosipc::api_v1
