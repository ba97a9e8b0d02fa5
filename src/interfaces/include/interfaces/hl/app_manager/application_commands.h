#pragma once

// IDL interface hl.app_manager.ApplicationCommands, reached on the service
// "app_manager.applicationCommands": the abstract class, its one description, and the proxy and stub
// made from it.

#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace hosipc::idl::stdcpp_v1::hl::app_manager {

// Numeric commands the application manager holds for an application. GetUpdateHandle gives a handle
// on which the manager raises the update event (bit 16) when a command changes; 0xffffffff is the
// invalid handle. GetCommand reads one command by name (at most 128 bytes): its value and rc.
class ApplicationCommands {
public:
    using Bytes = std::vector<unsigned char>;

    virtual ~ApplicationCommands() = default;
    virtual void GetUpdateHandle(const Bytes& appName, unsigned int& handle) = 0;
    virtual void GetCommand(const Bytes& name, std::int64_t& value, int& rc) = 0;
};

}  // namespace hosipc::idl::stdcpp_v1::hl::app_manager

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands> {
    using Interface = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands;
    static constexpr std::string_view kFailurePrefix = "hl_app_manager_ApplicationCommands_";

    using GetUpdateHandle = Method<"GetUpdateHandle", 0, &Interface::GetUpdateHandle,
                                   Request<32, 128, Named<"appName", SequenceArg<24>>>,
                                   Response<40, Named<"handle", HandleArg<24>>>>;
    using GetCommand = Method<"GetCommand", 1, &Interface::GetCommand, Request<32, 128, Named<"name", SequenceArg<24>>>,
                              Response<40, Named<"value", ValueArg<std::int64_t, 24>>, Named<"rc", ValueArg<std::int32_t, 32>>>>;
    using Methods = MethodList<GetUpdateHandle, GetCommand>;
};

template <>
class Proxy<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands> final
    : public ProxyBase<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands> {
public:
    using ProxyBase::ProxyBase;

    void GetUpdateHandle(const Bytes& appName, unsigned int& handle) override {
        Invoke<Description::GetUpdateHandle>(appName, handle);
    }
    void GetCommand(const Bytes& name, std::int64_t& value, int& rc) override {
        Invoke<Description::GetCommand>(name, value, rc);
    }
};

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands, api_v1::IpcDeleter>
MakeProxyImpl(const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
              ProxyBait<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands>* bait);

}  // namespace hosipc_detail::idl_traits
