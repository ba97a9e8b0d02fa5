#pragma once

#include <ipc_runtime/i_ipc_allocator.h>

namespace hosipc_detail::api_v1 {

// Array new/delete of bytes. Stateless, so safe from any thread.
class DefaultAllocator final : public IIpcAllocator {
public:
    void* Allocate(unsigned long size) override;
    void Deallocate(void* memory) override;
};

}  // namespace hosipc_detail::api_v1
