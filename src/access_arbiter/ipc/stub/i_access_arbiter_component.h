#pragma once

#include "ipc/i_access_arbiter.h"

#include <ipc_runtime/i_dispatcher.h>
#include <ipc_runtime/shared_resource_provider.h>

#include <memory>

namespace access_arbiter::stub {

// The server side of the decision service, ready to be put into a component dispatcher. The
// dispatcher it hands out points into the component without owning it: the component must outlive
// every use of it.
class IAccessArbiterComponent {
public:
    virtual ~IAccessArbiterComponent() = default;
    virtual std::shared_ptr<hosipc_detail::api_v1::IDispatcher> GetComponentDispatcher() = 0;
};

// The runtime's resources with every setting at its default.
hosipc_detail::api_v1::SharedResourceProvider GetPureAppResourceProvider();

// Takes the logic over; throws as AccessArbiterStub for a null one.
std::unique_ptr<IAccessArbiterComponent> CreateAccessArbiterComponent(
    std::shared_ptr<IAccessArbiter> arbiter);

}  // namespace access_arbiter::stub
