#pragma once

#include <ipc_runtime/i_connector.h>

#include <cstdint>

namespace ipc_runtime_test {

// A connector that opens no channel: it answers result, and on success gives the endpoint the riid
// with no real handle, so nothing is closed later.
class FakeConnector final : public hosipc::api_v1::IConnector {
public:
    FakeConnector(std::int32_t result, std::uint16_t riid) : m_result(result), m_riid(riid) {}

    std::int32_t Connect(hosipc_detail::api_v1::EndpointHandle& endpoint,
                         const hosipc_detail::api_v1::SharedResourceProvider&) const override {
        if (m_result == 0) {
            endpoint.Adopt(hosipc_detail::api_v1::EndpointHandle::kInvalidHandle, m_riid);
        }
        return m_result;
    }

private:
    std::int32_t m_result;
    std::uint16_t m_riid;
};

}  // namespace ipc_runtime_test
