#pragma once

#include <ipc_runtime/endpoint_handle.h>
#include <ipc_runtime/i_connector.h>
#include <ipc_runtime/ipc_deleter.h>
#include <ipc_runtime/shared_resource_provider.h>

#include <algorithm>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace hosipc_detail::idl_traits {

// Tag that selects the MakeProxyImpl overload of an interface; only ever passed as a null pointer.
template <typename T>
struct ProxyBait;

template <typename T>
class Proxy;

// What MakeProxyImpl asks the allocator for, unless Proxy<T> needs more.
inline constexpr unsigned long kProxyAllocationSize = 80;
inline constexpr const char* kConnectFailedText = "hosipc::MakeProxy(): error connecting to endpoint.";

// Connects through connector and builds Proxy<T> in memory of the resources' allocator. The proxy
// owns the new endpoint and shares resources. Throws std::runtime_error
// "hosipc::MakeProxy(): error connecting to endpoint." for any connection failure (the connector has
// logged the code). Each interface's MakeProxyImpl overload is this function for its T.
template <typename T>
std::unique_ptr<T, api_v1::IpcDeleter> MakeGeneratedProxy(const hosipc::api_v1::IConnector& connector,
                                                          const api_v1::SharedResourceProvider& resources) {
    const std::shared_ptr<api_v1::IIpcAllocator> allocator = resources->GetAllocator();
    // 80 bytes; more only when this build's Proxy<T> is bigger, as building it past the block is UB.
    void* memory = allocator->Allocate(std::max<unsigned long>(kProxyAllocationSize, sizeof(Proxy<T>)));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }

    api_v1::EndpointHandle endpoint;
    if (connector.Connect(endpoint, resources) != 0) {
        allocator->Deallocate(memory);
        throw std::runtime_error(kConnectFailedText);
    }
    Proxy<T>* proxy = nullptr;
    try {
        proxy = new (memory) Proxy<T>(std::move(endpoint), resources);
    } catch (...) {
        allocator->Deallocate(memory);
        throw;
    }
    return std::unique_ptr<T, api_v1::IpcDeleter>(proxy, api_v1::IpcDeleter(allocator));
}

}  // namespace hosipc_detail::idl_traits
