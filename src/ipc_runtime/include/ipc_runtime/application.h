#pragma once

#include <ipc_runtime/shared_resource_provider.h>

#include <utility>

namespace hosipc::api_v1 {

// The IPC runtime of one application: a value sharing its ResourceProvider. Proxies made through it
// keep the provider alive after the Application value is gone.
class Application {
public:
    explicit Application(hosipc_detail::api_v1::SharedResourceProvider resources)
        : m_resources(std::move(resources)) {}

    const hosipc_detail::api_v1::SharedResourceProvider& GetResourceProvider() const { return m_resources; }

private:
    hosipc_detail::api_v1::SharedResourceProvider m_resources;
};

}  // namespace hosipc::api_v1
