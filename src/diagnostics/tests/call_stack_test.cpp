#include <diagnostics/call_stack.h>
#include <diagnostics/check.h>
#include <diagnostics/result_code_exception.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

std::vector<int> g_requestedSizes;
int g_framesToReport = 0;

// Reports g_framesToReport frames (capped at the buffer size), frame i holding the address i + 1.
int FakeBacktrace(void** buffer, int size) {
    g_requestedSizes.push_back(size);
    const int count = std::min(g_framesToReport, size);
    for (int i = 0; i < count; ++i) {
        buffer[i] = reinterpret_cast<void*>(static_cast<std::uintptr_t>(i + 1));
    }
    return count;
}

TEST(CaptureCallStack, DoublesTheBufferWhileItComesBackFullAndDropsItsOwnFrame) {
    const struct {
        int frames;
        std::size_t skip;
        std::vector<int> sizes;
        std::size_t count;  // the first address lies in the capture itself and is always dropped
    } cases[] = {{100, 0, {64, 128}, 99},
                 {128, 0, {64, 128, 256}, 127},
                 {600, 0, {64, 128, 256, 512, 1024}, 599},
                 {63, 2, {64}, 60},
                 {6, 4, {64}, 1},
                 {5, 4, {64}, 0},
                 {5, 10, {64}, 0},
                 {0, 0, {64}, 0}};
    const hca::BacktraceFunction previous = hca::SetBacktraceFunctionForTesting(&FakeBacktrace);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.frames);
        g_requestedSizes.clear();
        g_framesToReport = c.frames;
        const auto frames = hca::CaptureCallStack(c.skip);
        EXPECT_EQ(g_requestedSizes, c.sizes);
        EXPECT_EQ(frames.size(), c.count);
        if (!frames.empty()) {
            EXPECT_EQ(frames.front(), 2 + c.skip);
            EXPECT_EQ(frames.back(), static_cast<std::uint64_t>(c.frames));
        }
    }
    hca::SetBacktraceFunctionForTesting(previous);
}

volatile int g_afterCall = 0;

[[gnu::noinline, gnu::noclone]] void FailingCheck(int rc) {
    HCA_CHECK_RESULT(rc) << "failed";
}

[[gnu::noinline, gnu::noclone]] void ThrowsDirectly(int rc) {
    throw hca::ResultCodeException("f", 1, rc);
}

// No tail call: the caller's frame stays on the stack.
template <void (*Fail)(int)>
[[gnu::noinline, gnu::noclone]] void CallsFailing(int rc) {
    Fail(rc);
    g_afterCall = g_afterCall + 1;
}

// The top frame recorded is the one that failed, so the second frame lies in its caller.
TEST(CallStack, RecordedStackStartsAtTheFailingFrameForCheckResultAndDirectThrows) {
    for (void (*caller)(int) : {&CallsFailing<&FailingCheck>, &CallsFailing<&ThrowsDirectly>}) {
        try {
            volatile int rc = -1;
            caller(rc);
            ADD_FAILURE() << "no throw";
        } catch (const hca::ResultCodeException& e) {
            const auto& frames = e.Context()->callStack.frames;
            const auto start = reinterpret_cast<std::uintptr_t>(caller);
            ASSERT_GE(frames.size(), 2u);
            EXPECT_TRUE(frames[1] > start && frames[1] < start + 4096);
        }
    }
}

}  // namespace
