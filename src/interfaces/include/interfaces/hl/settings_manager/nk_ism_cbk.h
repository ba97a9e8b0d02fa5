#pragma once

// IDL interface hl.settings_manager.NkISMCbk, served by every settings service on a client's callback
// connection: Wait is held open by the service until an update for one of the client's subscriptions
// comes (the client calls it with a call timeout and repeats it), Done confirms one delivered update.
// The abstract class, its one description, and the proxy and stub made from it.
//
// Wait's response arena (512 bytes) is received into the caller's buffer; `path` points at the
// changed setting's path text in it, and the caller checks that reference itself. rc is the service's
// result code, negative on failure.

#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include <cstdint>
#include <memory>

namespace hosipc::idl::stdcpp_v1::hl::settings_manager {

class NkISMCbk {
public:
    static constexpr std::uint32_t kWaitArena = 512;

    virtual ~NkISMCbk() = default;
    virtual void Wait(std::uint64_t cid, std::uint64_t& sid, nk_ptr_t& path, std::uint8_t& upd,
                      std::int32_t& rc, nk_arena& arena) = 0;
    virtual void Done(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) = 0;
};

}  // namespace hosipc::idl::stdcpp_v1::hl::settings_manager

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk> {
    using Interface = hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk;
    static constexpr std::string_view kFailurePrefix = "hl_settings_manager_NkISMCbk_";

    using Wait =
        Method<"Wait", 0, &Interface::Wait, Request<32, 0, Named<"cid", ValueArg<std::uint64_t, 24>>>,
               Response<48, Named<"sid", ValueArg<std::uint64_t, 24>>, Named<"path", ValueArg<nk_ptr_t, 32>>,
                        Named<"upd", ValueArg<std::uint8_t, 40>>, Named<"rc", ValueArg<std::int32_t, 44>>,
                        Named<"arena", ArenaOut<Interface::kWaitArena>>>>;
    using Done = Method<"Done", 1, &Interface::Done,
                        Request<40, 0, Named<"cid", ValueArg<std::uint64_t, 24>>, Named<"sid", ValueArg<std::uint64_t, 32>>>,
                        Response<32, Named<"rc", ValueArg<std::int32_t, 24>>>>;
    using Methods = MethodList<Wait, Done>;
};

template <>
class Proxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk> final
    : public ProxyBase<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk> {
public:
    using ProxyBase::ProxyBase;

    void Wait(std::uint64_t cid, std::uint64_t& sid, nk_ptr_t& path, std::uint8_t& upd, std::int32_t& rc,
              nk_arena& arena) override {
        Invoke<Description::Wait>(cid, sid, path, upd, rc, arena);
    }
    // Wait for a loop that waits again after each time limit: the transport's result instead of a
    // TransportError (0 when an answer came).
    int WaitOrTransportResult(std::uint64_t cid, std::uint64_t& sid, nk_ptr_t& path, std::uint8_t& upd,
                              std::int32_t& rc, nk_arena& arena) {
        return InvokeOrTransportResult<Description::Wait>(cid, sid, path, upd, rc, arena);
    }
    void Done(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) override {
        Invoke<Description::Done>(cid, sid, rc);
    }
};

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk, api_v1::IpcDeleter> MakeProxyImpl(
    const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
    ProxyBait<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk>* bait);

}  // namespace hosipc_detail::idl_traits
