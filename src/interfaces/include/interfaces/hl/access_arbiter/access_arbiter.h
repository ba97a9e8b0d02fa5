#pragma once

// IDL interface hl.access_arbiter.AccessArbiter, published as
// "hl.access_arbiter.AccessArbiter.accessArbiter" on the endpoint "accessArbiter_id": the abstract
// class, its one description, and the proxy and stub made from it.

#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include <memory>

namespace hosipc::idl::stdcpp_v1::hl::access_arbiter {

// The person's decision on a remote request to manage the device. GetUserDecision has no input and
// answers one byte: 0 decline, 1 approve. The server answers only once the person has decided.
class AccessArbiter {
public:
    virtual ~AccessArbiter() = default;
    virtual void GetUserDecision(unsigned char& decision) = 0;
};

}  // namespace hosipc::idl::stdcpp_v1::hl::access_arbiter

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter> {
    using Interface = hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;
    static constexpr std::string_view kFailurePrefix = "hl_access_arbiter_AccessArbiter_";

    using GetUserDecision = Method<"GetUserDecision", 0, &Interface::GetUserDecision, Request<24, 0>,
                                   Response<32, Named<"decision", ValueArg<unsigned char, 24>>>>;
    using Methods = MethodList<GetUserDecision>;
};

template <>
class Proxy<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter> final
    : public ProxyBase<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter> {
public:
    using ProxyBase::ProxyBase;

    void GetUserDecision(unsigned char& decision) override { Invoke<Description::GetUserDecision>(decision); }
};

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter, api_v1::IpcDeleter> MakeProxyImpl(
    const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
    ProxyBait<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter>* bait);

}  // namespace hosipc_detail::idl_traits
