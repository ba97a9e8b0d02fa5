#pragma once

// IDL interface hl.settings_manager.NkISMReg, served by every settings service: registration of a
// client's callback connection (cid) and its subscriptions (sid). The abstract class, its one
// description, and the proxy and stub made from it. rc is the service's result code, negative on
// failure.

#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace hosipc::idl::stdcpp_v1::hl::settings_manager {

class NkISMReg {
public:
    using Bytes = std::vector<unsigned char>;

    virtual ~NkISMReg() = default;
    // name: the callback connection's name (at most 64 bytes, no terminating zero).
    virtual void RegCallback(const Bytes& name, std::uint64_t& cid, std::int32_t& rc) = 0;
    virtual void UnregCallback(std::uint64_t cid, std::int32_t& rc) = 0;
    // path: a path text of at most 512 bytes.
    virtual void Subscribe(std::uint64_t cid, const Bytes& path, std::uint64_t& sid, std::int32_t& rc) = 0;
    virtual void Unsubscribe(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) = 0;
};

}  // namespace hosipc::idl::stdcpp_v1::hl::settings_manager

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg> {
    using Interface = hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg;
    static constexpr std::string_view kFailurePrefix = "hl_settings_manager_NkISMReg_";
    using Rc24 = Response<32, Named<"rc", ValueArg<std::int32_t, 24>>>;
    using Cid24 = Named<"cid", ValueArg<std::uint64_t, 24>>;
    using CidRc = Response<40, Cid24, Named<"rc", ValueArg<std::int32_t, 32>>>;
    using SidRc = Response<40, Named<"sid", ValueArg<std::uint64_t, 24>>, Named<"rc", ValueArg<std::int32_t, 32>>>;

    using RegCallback =
        Method<"RegCallback", 0, &Interface::RegCallback, Request<32, 64, Named<"name", SequenceArg<24, 64>>>, CidRc>;
    using UnregCallback = Method<"UnregCallback", 1, &Interface::UnregCallback,
                                 Request<32, 0, Cid24>, Rc24>;
    using Subscribe = Method<"Subscribe", 2, &Interface::Subscribe,
                             Request<40, 512, Cid24, Named<"path", SequenceArg<32, 512>>>, SidRc>;
    using Unsubscribe =
        Method<"Unsubscribe", 3, &Interface::Unsubscribe,
               Request<40, 0, Cid24, Named<"sid", ValueArg<std::uint64_t, 32>>>, Rc24>;
    using Methods = MethodList<RegCallback, UnregCallback, Subscribe, Unsubscribe>;
};

template <>
class Proxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg> final
    : public ProxyBase<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg> {
public:
    using ProxyBase::ProxyBase;

    void RegCallback(const Bytes& name, std::uint64_t& cid, std::int32_t& rc) override {
        Invoke<Description::RegCallback>(name, cid, rc);
    }
    void UnregCallback(std::uint64_t cid, std::int32_t& rc) override {
        Invoke<Description::UnregCallback>(cid, rc);
    }
    void Subscribe(std::uint64_t cid, const Bytes& path, std::uint64_t& sid, std::int32_t& rc) override {
        Invoke<Description::Subscribe>(cid, path, sid, rc);
    }
    void Unsubscribe(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) override {
        Invoke<Description::Unsubscribe>(cid, sid, rc);
    }
};

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg, api_v1::IpcDeleter> MakeProxyImpl(
    const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
    ProxyBait<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg>* bait);

}  // namespace hosipc_detail::idl_traits
