#include <diagnostics/call_stack.h>

#include <execinfo.h>

#include <atomic>
#include <memory>

namespace hca {
namespace {

std::atomic<BacktraceFunction> g_backtrace{nullptr};

// Inlined so that the frame accounting below holds at every optimisation level.
[[gnu::always_inline]] inline int Backtrace(void** buffer, int size) {
    const BacktraceFunction function = g_backtrace.load(std::memory_order_acquire);
    return function != nullptr ? function(buffer, size) : ::backtrace(buffer, size);
}

// Drops the frames of the capture itself: everything up to the address at which the capture returns
// to its caller. backtrace may be wrapped (a sanitizer intercepts it and adds a frame), so that
// address is searched for; when it isn't there (a replaced backtrace) only the first frame goes.
types::vector_t<std::uint64_t> Keep(void* const* frames, int count, std::size_t skip,
                                    const void* returnAddress) {
    types::vector_t<std::uint64_t> result;
    std::size_t own = 1;
    for (int i = 0; i < count; ++i) {
        if (frames[i] == returnAddress) {
            own = static_cast<std::size_t>(i);
            break;
        }
    }
    skip += own;
    if (count <= 0 || static_cast<std::size_t>(count) <= skip) {
        return result;
    }
    result.reserve(static_cast<std::size_t>(count) - skip);
    for (auto i = skip; i < static_cast<std::size_t>(count); ++i) {
        result.push_back(reinterpret_cast<std::uintptr_t>(frames[i]));
    }
    return result;
}

}  // namespace

[[gnu::noinline]] types::vector_t<std::uint64_t> CaptureCallStack(std::size_t skip) {
    const void* const returnAddress = __builtin_return_address(0);
    constexpr int kStackFrames = 64;
    void* onStack[kStackFrames];
    int count = Backtrace(onStack, kStackFrames);
    if (count < kStackFrames) {
        return Keep(onStack, count, skip, returnAddress);
    }
    int size = kStackFrames;
    std::unique_ptr<void*[]> onHeap;
    do {
        size *= 2;
        onHeap = std::make_unique<void*[]>(static_cast<std::size_t>(size));
        count = Backtrace(onHeap.get(), size);
    } while (count >= size);
    return Keep(onHeap.get(), count, skip, returnAddress);
}

BacktraceFunction SetBacktraceFunctionForTesting(BacktraceFunction function) {
    return g_backtrace.exchange(function, std::memory_order_acq_rel);
}

}  // namespace hca
