#pragma once

#include <ipc_runtime/i_ipc_allocator.h>

#include <memory>
#include <type_traits>
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
        void* memory = object;
        if constexpr (std::is_polymorphic_v<T>) {
            // The allocation began at the most derived object, which a base pointer need not point at.
            memory = dynamic_cast<void*>(object);
        }
        object->~T();
        if (m_allocator) {
            m_allocator->Deallocate(memory);
        }
    }

    const std::shared_ptr<IIpcAllocator>& GetAllocator() const { return m_allocator; }

private:
    std::shared_ptr<IIpcAllocator> m_allocator;
};

}  // namespace hosipc_detail::api_v1
