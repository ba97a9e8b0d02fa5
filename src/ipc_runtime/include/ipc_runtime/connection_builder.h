#pragma once

#include <ipc_runtime/i_connector.h>

#include <cstdint>
#include <string_view>

namespace hosipc::api_v1 {

// Tag: connect through the platform's dynamic channels (KnCmConnect).
struct ConnectViaDynamicChannel {};

// The platform calls a dynamic-channel connector makes; KnCmConnect and KnHandleClose unless a test
// puts its own in.
struct DynamicChannelCalls {
    int (*connect)(const char* server, const char* service, unsigned int timeoutMs, unsigned int* handle,
                   unsigned int* riid);
    int (*close)(unsigned int handle);
};

DynamicChannelCalls PlatformDynamicChannelCalls();

template <typename Method>
class ConnectionBuilder;

// Connects to a service of a named server. The views must stay valid while the builder lives, and each
// must be followed by a zero byte, since the platform takes them as C strings.
template <>
class ConnectionBuilder<ConnectViaDynamicChannel> final : public IConnector {
public:
    static constexpr std::int32_t kInvalidRiidResult = static_cast<std::int32_t>(0x90000002U);
    static constexpr std::uint32_t kNoLimitTimeout = 0xffffffffU;

    // noLimit: wait without limit, whatever timeoutMs says.
    ConnectionBuilder(std::string_view server, std::string_view service, std::uint32_t timeoutMs,
                      bool noLimit)
        : ConnectionBuilder(server, service, timeoutMs, noLimit, PlatformDynamicChannelCalls()) {}

    ConnectionBuilder(std::string_view server, std::string_view service, std::uint32_t timeoutMs,
                      bool noLimit, DynamicChannelCalls callsForTesting)
        : m_server(server),
          m_service(service),
          m_timeoutMs(timeoutMs),
          m_noLimit(noLimit),
          m_calls(callsForTesting) {}

    std::int32_t Connect(hosipc_detail::api_v1::EndpointHandle& endpoint,
                         const hosipc_detail::api_v1::SharedResourceProvider& resources) const override;

private:
    std::string_view m_server;
    std::string_view m_service;
    std::uint32_t m_timeoutMs;
    bool m_noLimit;
    DynamicChannelCalls m_calls;
};

}  // namespace hosipc::api_v1
