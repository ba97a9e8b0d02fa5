#pragma once
// Call stack capture for exceptions. Frames are recorded as return addresses; module information is
// never filled in this program.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace hca {

namespace types {
// Exception texts and vectors use ordinary owning containers on the C heap.
template <typename Char>
using basic_string_t = std::basic_string<Char>;
template <typename T>
using vector_t = std::vector<T>;
}  // namespace types

struct module_information {
    std::uint64_t base = 0;
    std::uint64_t size = 0;
    std::string name;
};

struct call_stack_context {
    types::vector_t<std::uint64_t> frames;
    types::vector_t<module_information> modules;
};

// The signature of backtrace(3).
using BacktraceFunction = int (*)(void** buffer, int size);

// Captures the call stack and drops the skip innermost frames; without skipping, the first frame
// is the caller of this function (the frames of the capture itself are always dropped). Starts with room for
// 64 addresses on the stack and doubles on the heap for as long as the buffer comes back full. Never inlined,
// so the frame count stays fixed.
types::vector_t<std::uint64_t> CaptureCallStack(std::size_t skip);

// Replaces backtrace for the tests of the capture; nullptr restores it. Returns the one set before.
BacktraceFunction SetBacktraceFunctionForTesting(BacktraceFunction function);

}  // namespace hca
