#pragma once

// IDL interface hl.app_manager.ApplicationManagerControl, reached on the service
// "app_manager.control": the abstract class, its one description, and the proxy and stub made from
// it.

#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace hosipc::idl::stdcpp_v1::hl::app_manager {

// What a person or a script asks of the application manager, by application name (at most 128
// bytes). Start, Stop, Restart and ResetFailed answer once the manager has acted (a stop has sent
// its signal; the end follows); rc 0, or ApplicationManagerControl::kNoSuchApplication, or
// kNotPossible when the application's state doesn't allow it. SetCommand sets a command of an
// application (name at most 128 bytes) and raises its update event. Status answers a JSON text of
// at most kStatusBytes: the manager and each application (one when a name is given).
class ApplicationManagerControl {
public:
    using Bytes = std::vector<unsigned char>;
    static constexpr int kNoSuchApplication = static_cast<int>(0x90000013U);
    static constexpr int kNotPossible = static_cast<int>(0x9000000dU);
    static constexpr std::uint32_t kStatusBytes = 16384;

    virtual ~ApplicationManagerControl() = default;
    virtual void Start(const Bytes& appName, int& rc) = 0;
    virtual void Stop(const Bytes& appName, int& rc) = 0;
    virtual void Restart(const Bytes& appName, int& rc) = 0;
    virtual void ResetFailed(const Bytes& appName, int& rc) = 0;
    virtual void SetCommand(const Bytes& appName, const Bytes& name, std::int64_t value, int& rc) = 0;
    virtual void Status(const Bytes& appName, int& rc, Bytes& json) = 0;
};

}  // namespace hosipc::idl::stdcpp_v1::hl::app_manager

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl> {
    using Interface = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl;
    static constexpr std::string_view kFailurePrefix = "hl_app_manager_ApplicationManagerControl_";

    using ByName = Request<32, 128, Named<"appName", SequenceArg<24>>>;
    using Rc = Response<32, Named<"rc", ValueArg<std::int32_t, 24>>>;
    using Start = Method<"Start", 0, &Interface::Start, ByName, Rc>;
    using Stop = Method<"Stop", 1, &Interface::Stop, ByName, Rc>;
    using Restart = Method<"Restart", 2, &Interface::Restart, ByName, Rc>;
    using ResetFailed = Method<"ResetFailed", 3, &Interface::ResetFailed, ByName, Rc>;
    using SetCommand = Method<"SetCommand", 4, &Interface::SetCommand,
                              Request<48, 256, Named<"appName", SequenceArg<24>>, Named<"name", SequenceArg<32>>,
                                      Named<"value", ValueArg<std::int64_t, 40>>>,
                              Rc>;
    using Status = Method<"Status", 5, &Interface::Status, ByName,
                          Response<40, Named<"rc", ValueArg<std::int32_t, 24>>,
                                   Named<"json", SequenceArg<32, Interface::kStatusBytes>>>>;
    using Methods = MethodList<Start, Stop, Restart, ResetFailed, SetCommand, Status>;
};

template <>
class Proxy<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl> final
    : public ProxyBase<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl> {
public:
    using ProxyBase::ProxyBase;

    void Start(const Bytes& appName, int& rc) override { Invoke<Description::Start>(appName, rc); }
    void Stop(const Bytes& appName, int& rc) override { Invoke<Description::Stop>(appName, rc); }
    void Restart(const Bytes& appName, int& rc) override { Invoke<Description::Restart>(appName, rc); }
    void ResetFailed(const Bytes& appName, int& rc) override { Invoke<Description::ResetFailed>(appName, rc); }
    void SetCommand(const Bytes& appName, const Bytes& name, std::int64_t value, int& rc) override {
        Invoke<Description::SetCommand>(appName, name, value, rc);
    }
    void Status(const Bytes& appName, int& rc, Bytes& json) override {
        Invoke<Description::Status>(appName, rc, json);
    }
};

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl, api_v1::IpcDeleter>
MakeProxyImpl(const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
              ProxyBait<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl>* bait);

}  // namespace hosipc_detail::idl_traits
