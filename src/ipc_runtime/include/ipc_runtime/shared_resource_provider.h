#pragma once

#include <ipc_runtime/resource_provider.h>

#include <memory>
#include <utility>

namespace hosipc_detail::api_v1 {

// A value sharing one ResourceProvider: copying it copies the reference.
class SharedResourceProvider {
public:
    SharedResourceProvider() = default;
    // Implicit on purpose: a provider made with make_shared is handed on as a SharedResourceProvider.
    SharedResourceProvider(std::shared_ptr<ResourceProvider> provider) : m_provider(std::move(provider)) {}

    ResourceProvider* operator->() const { return m_provider.get(); }
    ResourceProvider& operator*() const { return *m_provider; }
    ResourceProvider* Get() const { return m_provider.get(); }
    explicit operator bool() const { return m_provider != nullptr; }
    long UseCount() const { return m_provider.use_count(); }

private:
    std::shared_ptr<ResourceProvider> m_provider;
};

}  // namespace hosipc_detail::api_v1
