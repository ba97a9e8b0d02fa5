#pragma once

#include "ipc/stub/access_arbiter_stub.h"
#include "ipc/stub/i_access_arbiter_component.h"

#include <interfaces/hl/access_arbiter/access_arbiter.h>

#include <memory>

namespace access_arbiter::stub {

// Owns the resources, the interface object and the generated Stub over it (which does not own the
// interface object). Made and destroyed on the main thread; the Stub serves on the dispatcher thread.
class AccessArbiterComponent final : public IAccessArbiterComponent {
public:
    explicit AccessArbiterComponent(std::shared_ptr<IAccessArbiter> arbiter);

    std::shared_ptr<hosipc_detail::api_v1::IDispatcher> GetComponentDispatcher() override;

private:
    using GeneratedStub =
        hosipc_detail::idl_traits::Stub<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter>;

    hosipc_detail::api_v1::SharedResourceProvider m_resourceProvider;
    std::shared_ptr<AccessArbiterStub> m_stub;
    std::shared_ptr<GeneratedStub> m_dispatcher;
};

}  // namespace access_arbiter::stub
