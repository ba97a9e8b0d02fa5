#pragma once

namespace hosipc_detail::api_v1 {

// Allocator for generated proxy objects. Must be callable from any thread that makes or drops a proxy.
// The operations deliberately stand before the destructor in the virtual table.
class IIpcAllocator {
public:
    virtual void* Allocate(unsigned long size) = 0;
    // Accepts null.
    virtual void Deallocate(void* memory) = 0;
    virtual ~IIpcAllocator() = default;
};

}  // namespace hosipc_detail::api_v1
