#pragma once
// hos::ipc::Proxy<T>: one connection to a settings service carrying the generated client of the IDL
// interface T (NkISM, NkISMReg or NkISMCbk) and its transport. Init connects, through the service
// locator or the connection manager, and throws hca::CheckFailedException when it can't; a second
// Init drops the first connection. The handle is closed when the object goes (or at the next Init)
// unless it was borrowed from another Proxy, which must then outlive this one. Calls block the
// calling thread; one thread at a time.

#include <ipc_runtime/endpoint_handle.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/resource_provider.h>

#include <diagnostics/check.h>

#include <platform/kn_channel.h>
#include <platform/service_locator.h>

#include <cstdint>
#include <memory>
#include <utility>

namespace hos::ipc {

// A server and the interface name on it, as the connection manager takes them.
struct Target {
    const char* server = nullptr;
    const char* interface = nullptr;
};

template <typename T>
class Proxy {
public:
    using Client = hosipc_detail::idl_traits::Proxy<T>;
    static constexpr std::uint32_t kNoTimeout = 0xFFFFFFFFu;
    static constexpr unsigned int kNotFoundRetries = 3000;
    static constexpr unsigned int kNotFoundSleepMs = 100;

    // Through the service locator.
    void Init(const char* server, const char* interface, std::uint32_t receiveMs, std::uint32_t callMs) {
        CheckNames(server, interface);
        m_client.reset();
        const std::uint32_t handle = ServiceLocatorConnect(server);
        HCA_CHECK(handle != hosipc_detail::api_v1::EndpointHandle::kInvalidHandle)
            << "ServiceLocatorConnect() fail: " << server;
        const std::uint16_t riid = ServiceLocatorGetRiid(handle, interface);
        if (riid == hosipc_detail::api_v1::EndpointHandle::kInvalidRiid) {
            KnHandleClose(handle);
        }
        HCA_CHECK(riid != hosipc_detail::api_v1::EndpointHandle::kInvalidRiid)
            << "ServiceLocatorGetRiid() fail: " << server << " : " << interface;
        Finish(handle, riid, true, receiveMs, callMs);
    }

    // Through the connection manager; a server that isn't there yet is asked again every 100 ms, up to
    // 3000 times. own false leaves the handle open at the end (the platform's handles then leak).
    void Init(const Target& target, bool own, std::uint32_t connectMs, std::uint32_t receiveMs,
              std::uint32_t callMs) {
        CheckNames(target.server, target.interface);
        m_client.reset();
        unsigned int handle = hosipc_detail::api_v1::EndpointHandle::kInvalidHandle;
        unsigned int riid = hosipc_detail::api_v1::EndpointHandle::kInvalidRiid;
        int result = KnCmConnect(target.server, target.interface, connectMs, &handle, &riid);
        for (unsigned int attempt = 0; result == NK_ENOTFOUND && attempt < kNotFoundRetries; ++attempt) {
            KnSleep(kNotFoundSleepMs);
            result = KnCmConnect(target.server, target.interface, connectMs, &handle, &riid);
        }
        HCA_CHECK(result == 0 && handle != hosipc_detail::api_v1::EndpointHandle::kInvalidHandle &&
                  riid != hosipc_detail::api_v1::EndpointHandle::kInvalidRiid)
            << "KnCmConnect() fail: " << target.server << "." << target.interface << ":" << riid << " ("
            << result << ")";
        Finish(handle, static_cast<std::uint16_t>(riid), own, receiveMs, callMs);
    }

    // The handle of other, addressed to riid: messages of T go over other's channel.
    void InitBorrowed(std::uint32_t handle, std::uint16_t riid, std::uint32_t receiveMs,
                      std::uint32_t callMs) {
        hosipc_detail::api_v1::EndpointHandle endpoint;
        endpoint.Borrow(handle, riid);
        MakeClient(std::move(endpoint), receiveMs, callMs);
    }

    bool IsConnected() const { return m_client != nullptr; }
    Client& operator*() const { return *m_client; }
    Client* operator->() const { return m_client.get(); }
    std::uint32_t Handle() const {
        return m_client ? m_client->GetEndpoint().GetHandle()
                        : hosipc_detail::api_v1::EndpointHandle::kInvalidHandle;
    }
    std::uint16_t Riid() const {
        return m_client ? m_client->GetEndpoint().GetRiid()
                        : hosipc_detail::api_v1::EndpointHandle::kInvalidRiid;
    }

private:
    static void CheckNames(const char* server, const char* interface) {
        HCA_CHECK(server != nullptr && *server != '\0' && interface != nullptr && *interface != '\0');
    }

    void Finish(std::uint32_t handle, std::uint16_t riid, bool own, std::uint32_t receiveMs,
                std::uint32_t callMs) {
        hosipc_detail::api_v1::EndpointHandle endpoint;
        if (own) {
            endpoint.Adopt(handle, riid);
        } else {
            endpoint.Borrow(handle, riid);
        }
        MakeClient(std::move(endpoint), receiveMs, callMs);
    }

    void MakeClient(hosipc_detail::api_v1::EndpointHandle endpoint, std::uint32_t receiveMs,
                    std::uint32_t callMs) {
        m_client = std::make_unique<Client>(
            std::move(endpoint),
            std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
                hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{}));
        m_client->SetTimeouts(receiveMs, callMs);
    }

    std::unique_ptr<Client> m_client;
};

}  // namespace hos::ipc
