#pragma once

#include <ipc_runtime/i_ipc_allocator.h>

#include <memory>
#include <utility>

namespace hosipc_detail::api_v1 {

// Deleter of unique_ptr for generated proxies: runs the proxy's destructor, then hands the memory back
// to the allocator that made it. Shares the allocator, so the allocator outlives every proxy.
class IpcDeleter {
public:
    IpcDeleter() = default;
    explicit IpcDeleter(std::shared_ptr<IIpcAllocator> allocator) : m_allocator(std::move(allocator)) {}

    template <typename T>
    void operator()(T* object) const {
        if (object == nullptr) {
            return;
        }
        object->~T();
        if (m_allocator) {
            m_allocator->Deallocate(object);
        }
    }

    const std::shared_ptr<IIpcAllocator>& GetAllocator() const { return m_allocator; }

private:
    std::shared_ptr<IIpcAllocator> m_allocator;
};

}  // namespace hosipc_detail::api_v1
