#include <ipc_runtime/ipc_deleter.h>

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <vector>

namespace {

using hosipc_detail::api_v1::IIpcAllocator;
using hosipc_detail::api_v1::IpcDeleter;

bool g_destroyed = false;

class RecordingAllocator final : public IIpcAllocator {
public:
    void* Allocate(unsigned long size) override {
        void* memory = new unsigned char[size];
        allocated.push_back(memory);
        return memory;
    }
    void Deallocate(void* memory) override {
        destroyedBeforeDeallocate = g_destroyed;
        deallocated.push_back(memory);
        delete[] static_cast<unsigned char*>(memory);
    }

    std::vector<void*> allocated;
    std::vector<void*> deallocated;
    bool destroyedBeforeDeallocate = false;
};

class Interface {
public:
    virtual ~Interface() = default;
};

class OtherBase {
public:
    virtual ~OtherBase() = default;
    long value = 1;
};

// The interface isn't the first base, so its address differs from the allocation's.
class Implementation final : public OtherBase, public Interface {
public:
    ~Implementation() override { g_destroyed = true; }
};

TEST(IpcDeleter, DestroysFirstThenHandsTheAllocatedAddressBack) {
    g_destroyed = false;
    auto allocator = std::make_shared<RecordingAllocator>();
    void* memory = allocator->Allocate(sizeof(Implementation));
    Interface* object = new (memory) Implementation();
    ASSERT_NE(static_cast<void*>(object), memory);

    std::unique_ptr<Interface, IpcDeleter> owner(object, IpcDeleter(allocator));
    owner.reset();

    EXPECT_TRUE(g_destroyed);
    EXPECT_TRUE(allocator->destroyedBeforeDeallocate);
    EXPECT_EQ(allocator->deallocated, std::vector<void*>{memory});
}

TEST(IpcDeleter, KeepsItsAllocatorAliveForTheProxy) {
    auto allocator = std::make_shared<RecordingAllocator>();
    const IpcDeleter deleter(allocator);
    const std::weak_ptr<RecordingAllocator> watcher = allocator;

    allocator.reset();

    EXPECT_FALSE(watcher.expired());
    EXPECT_EQ(deleter.GetAllocator().get(), watcher.lock().get());
}

}  // namespace
