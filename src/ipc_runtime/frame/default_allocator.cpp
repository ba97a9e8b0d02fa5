#include <ipc_runtime/default_allocator.h>

namespace hosipc_detail::api_v1 {

void* DefaultAllocator::Allocate(unsigned long size) {
    return new unsigned char[size];
}

void DefaultAllocator::Deallocate(void* memory) {
    delete[] static_cast<unsigned char*>(memory);
}

}  // namespace hosipc_detail::api_v1
