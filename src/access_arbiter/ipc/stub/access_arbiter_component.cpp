#include "ipc/stub/access_arbiter_component.h"

#include <ipc_runtime/application_settings.h>
#include <ipc_runtime/message_capacity.h>
#include <ipc_runtime/resource_provider.h>

#include <utility>

namespace access_arbiter::stub {

hosipc_detail::api_v1::SharedResourceProvider GetPureAppResourceProvider() {
    return std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0u, hosipc::api_v1::ApplicationSettings{});
}

std::unique_ptr<IAccessArbiterComponent> CreateAccessArbiterComponent(
    std::shared_ptr<IAccessArbiter> arbiter) {
    return std::make_unique<AccessArbiterComponent>(std::move(arbiter));
}

AccessArbiterComponent::AccessArbiterComponent(std::shared_ptr<IAccessArbiter> arbiter)
    : m_resourceProvider(GetPureAppResourceProvider()),
      m_stub(std::make_shared<AccessArbiterStub>(std::move(arbiter))),
      m_dispatcher(std::make_shared<GeneratedStub>(m_stub.get(), m_resourceProvider)) {}

std::shared_ptr<hosipc_detail::api_v1::IDispatcher> AccessArbiterComponent::GetComponentDispatcher() {
    return m_dispatcher;
}

}  // namespace access_arbiter::stub
