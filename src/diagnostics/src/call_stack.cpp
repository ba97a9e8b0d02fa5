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

types::vector_t<std::uint64_t> Keep(void* const* frames, int count, std::size_t skip) {
  types::vector_t<std::uint64_t> result;
  if (count <= 0 || static_cast<std::size_t>(count) <= skip) {
    return result;
  }
  result.reserve(static_cast<std::size_t>(count) - skip);
  for (auto i = static_cast<int>(skip); i < count; ++i) {
    result.push_back(reinterpret_cast<std::uintptr_t>(frames[i]));
  }
  return result;
}

}  // namespace

[[gnu::noinline]] types::vector_t<std::uint64_t> CaptureCallStack(std::size_t skip) {
  // backtrace's first address lies in this function; the caller is next.
  skip += 1;
  constexpr int kStackFrames = 64;
  void* onStack[kStackFrames];
  int count = Backtrace(onStack, kStackFrames);
  if (count < kStackFrames) {
    return Keep(onStack, count, skip);
  }
  int size = kStackFrames;
  std::unique_ptr<void*[]> onHeap;
  do {
    size *= 2;
    onHeap = std::make_unique<void*[]>(static_cast<std::size_t>(size));
    count = Backtrace(onHeap.get(), size);
  } while (count >= size);
  return Keep(onHeap.get(), count, skip);
}

BacktraceFunction SetBacktraceFunctionForTesting(BacktraceFunction function) {
  return g_backtrace.exchange(function, std::memory_order_acq_rel);
}

}  // namespace hca
