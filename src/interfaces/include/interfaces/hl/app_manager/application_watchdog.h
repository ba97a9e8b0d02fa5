#pragma once

// IDL interface hl.app_manager.ApplicationWatchdog, reached on the service
// "app_manager.applicationWatchdog": the abstract class, its one description, and the proxy and stub
// made from it.

#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace hosipc::idl::stdcpp_v1::hl::app_manager {

// The application manager's liveness check. Ping carries the application's name (at most 128 bytes)
// and answers with the manager's result code.
class ApplicationWatchdog {
public:
    virtual ~ApplicationWatchdog() = default;
    virtual void Ping(const std::vector<unsigned char>& appName, int& rc) = 0;
};

}  // namespace hosipc::idl::stdcpp_v1::hl::app_manager

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog> {
    using Interface = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;
    static constexpr std::string_view kFailurePrefix = "hl_app_manager_ApplicationWatchdog_";

    using Ping = Method<"Ping", 0, &Interface::Ping, Request<32, 128, Named<"appName", SequenceArg<24>>>,
                        Response<32, Named<"rc", ValueArg<std::int32_t, 24>>>>;
    using Methods = MethodList<Ping>;
};

template <>
class Proxy<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog> final
    : public ProxyBase<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog> {
public:
    using ProxyBase::ProxyBase;

    void Ping(const std::vector<unsigned char>& appName, int& rc) override {
        Invoke<Description::Ping>(appName, rc);
    }
};

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog, api_v1::IpcDeleter>
MakeProxyImpl(const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
              ProxyBait<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog>* bait);

}  // namespace hosipc_detail::idl_traits
