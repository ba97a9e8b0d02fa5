#pragma once

#include <ipc_runtime/endpoint_handle.h>
#include <ipc_runtime/shared_resource_provider.h>

#include <cstdint>

namespace hosipc::api_v1 {

// Opens a channel for a proxy. Doesn't throw: failures are reported through the provider's logger and
// the result (0 on success). On success the endpoint owns the new handle.
class IConnector {
public:
    virtual std::int32_t Connect(hosipc_detail::api_v1::EndpointHandle& endpoint,
                                 const hosipc_detail::api_v1::SharedResourceProvider& resources) const = 0;

protected:
    ~IConnector() = default;
};

}  // namespace hosipc::api_v1
