#pragma once

// IDL interface hl.app_manager.ApplicationController, reached on the service
// "app_manager.applicationController": the abstract class, its one description, and the proxy and
// stub made from it.

#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace hosipc::idl::stdcpp_v1::hl::app_manager {

// An application's reports of its progress to the application manager. Every name and text is a
// byte sequence of at most 128 bytes without terminator; rc is the manager's result code.
class ApplicationController {
public:
    using Bytes = std::vector<unsigned char>;

    virtual ~ApplicationController() = default;
    virtual void StartApplication(const Bytes& appName, int& rc) = 0;
    virtual void ReadyToInitialize(const Bytes& appName, int& rc) = 0;
    virtual void ReadyToShowUI(const Bytes& appName, int& rc) = 0;
    virtual void FinishWithInternalError(const Bytes& appName, const Bytes& error, const Bytes& details,
                                         int& rc) = 0;
    virtual void StateChanged(const Bytes& appName, std::int64_t state, int& rc) = 0;
};

}  // namespace hosipc::idl::stdcpp_v1::hl::app_manager

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController> {
    using Interface = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController;
    static constexpr std::string_view kFailurePrefix = "hl_app_manager_ApplicationController_";

    using Rc = Response<32, Named<"rc", ValueArg<std::int32_t, 24>>>;
    using AppName = Named<"appName", SequenceArg<24>>;
    using StartApplication =
        Method<"StartApplication", 0, &Interface::StartApplication, Request<32, 128, AppName>, Rc>;
    using ReadyToInitialize =
        Method<"ReadyToInitialize", 1, &Interface::ReadyToInitialize, Request<32, 128, AppName>, Rc>;
    using ReadyToShowUI =
        Method<"ReadyToShowUI", 2, &Interface::ReadyToShowUI, Request<32, 128, AppName>, Rc>;
    using FinishWithInternalError =
        Method<"FinishWithInternalError", 3, &Interface::FinishWithInternalError,
               Request<48, 384, AppName, Named<"error", SequenceArg<32>>, Named<"details", SequenceArg<40>>>, Rc>;
    using StateChanged = Method<"StateChanged", 4, &Interface::StateChanged,
                                Request<40, 128, AppName, Named<"state", ValueArg<std::int64_t, 32>>>, Rc>;
    using Methods =
        MethodList<StartApplication, ReadyToInitialize, ReadyToShowUI, FinishWithInternalError, StateChanged>;
};

template <>
class Proxy<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController> final
    : public ProxyBase<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController> {
public:
    using ProxyBase::ProxyBase;

    void StartApplication(const Bytes& appName, int& rc) override {
        Invoke<Description::StartApplication>(appName, rc);
    }
    void ReadyToInitialize(const Bytes& appName, int& rc) override {
        Invoke<Description::ReadyToInitialize>(appName, rc);
    }
    void ReadyToShowUI(const Bytes& appName, int& rc) override {
        Invoke<Description::ReadyToShowUI>(appName, rc);
    }
    void FinishWithInternalError(const Bytes& appName, const Bytes& error, const Bytes& details,
                                 int& rc) override {
        Invoke<Description::FinishWithInternalError>(appName, error, details, rc);
    }
    void StateChanged(const Bytes& appName, std::int64_t state, int& rc) override {
        Invoke<Description::StateChanged>(appName, state, rc);
    }
};

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController, api_v1::IpcDeleter>
MakeProxyImpl(const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
              ProxyBait<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController>* bait);

}  // namespace hosipc_detail::idl_traits
