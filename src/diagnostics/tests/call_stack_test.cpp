#include <diagnostics/call_stack.h>
#include <diagnostics/check.h>
#include <diagnostics/result_code_exception.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

// Restores the real backtrace when a test ends, also on failure.
class BacktraceOverride {
 public:
  explicit BacktraceOverride(hca::BacktraceFunction function)
      : m_previous(hca::SetBacktraceFunctionForTesting(function)) {}
  ~BacktraceOverride() { hca::SetBacktraceFunctionForTesting(m_previous); }

 private:
  hca::BacktraceFunction m_previous;
};

std::vector<int> g_requestedSizes;
int g_framesToReport = 0;

// Reports g_framesToReport frames (capped at the buffer size), frame i holding the address i + 1.
int FakeBacktrace(void** buffer, int size) {
  g_requestedSizes.push_back(size);
  const int count = g_framesToReport < size ? g_framesToReport : size;
  for (int i = 0; i < count; ++i) {
    buffer[i] = reinterpret_cast<void*>(static_cast<std::uintptr_t>(i + 1));
  }
  return count;
}

std::vector<std::uint64_t> CaptureWithFake(int frames, std::size_t skip) {
  g_requestedSizes.clear();
  g_framesToReport = frames;
  BacktraceOverride fake(&FakeBacktrace);
  return hca::CaptureCallStack(skip);
}

TEST(CaptureCallStack, FullBufferOf64DoublesTo128) {
  const auto frames = CaptureWithFake(100, 0);
  EXPECT_EQ(g_requestedSizes, (std::vector<int>{64, 128}));
  // The first address lies in the capture itself and is always dropped.
  ASSERT_EQ(frames.size(), 99u);
  EXPECT_EQ(frames.front(), 2u);
  EXPECT_EQ(frames.back(), 100u);
}

TEST(CaptureCallStack, KeepsDoublingWhileTheBufferComesBackFull) {
  CaptureWithFake(128, 0);
  EXPECT_EQ(g_requestedSizes, (std::vector<int>{64, 128, 256}));
  const auto frames = CaptureWithFake(600, 0);
  EXPECT_EQ(g_requestedSizes, (std::vector<int>{64, 128, 256, 512, 1024}));
  EXPECT_EQ(frames.size(), 599u);
}

TEST(CaptureCallStack, FewerThan64FramesNeedOneCall) {
  const auto frames = CaptureWithFake(63, 2);
  EXPECT_EQ(g_requestedSizes, (std::vector<int>{64}));
  ASSERT_EQ(frames.size(), 60u);
  EXPECT_EQ(frames.front(), 4u);
}

TEST(CaptureCallStack, SkippingAllFramesGivesAnEmptyList) {
  EXPECT_TRUE(CaptureWithFake(5, 4).empty());
  EXPECT_TRUE(CaptureWithFake(5, 10).empty());
  EXPECT_TRUE(CaptureWithFake(0, 0).empty());
  EXPECT_EQ(CaptureWithFake(6, 4).size(), 1u);
}

volatile int g_afterCall = 0;

[[gnu::noinline, gnu::noclone]] void FailingCheck(int rc) { HCA_CHECK_RESULT(rc) << "failed"; }

[[gnu::noinline, gnu::noclone]] void CallsFailingCheck(int rc) {
  FailingCheck(rc);
  g_afterCall = g_afterCall + 1;  // no tail call: this frame stays on the stack
}

[[gnu::noinline, gnu::noclone]] void ThrowsDirectly(int rc) { throw hca::ResultCodeException(__FILE__, __LINE__, rc); }

[[gnu::noinline, gnu::noclone]] void CallsThrowsDirectly(int rc) {
  ThrowsDirectly(rc);
  g_afterCall = g_afterCall + 1;
}

bool IsInside(std::uint64_t address, void (*function)(int)) {
  const auto start = reinterpret_cast<std::uintptr_t>(function);
  return address > start && address < start + 4096;
}

// The top frame recorded is the one that failed: the second frame is its caller.
TEST(CheckResult, RecordedStackStartsAtTheFailingFrame) {
  volatile int rc = -1;
  try {
    CallsFailingCheck(rc);
    FAIL() << "no throw";
  } catch (const hca::CheckResultFailedException& e) {
    const auto& frames = e.Context()->callStack.frames;
    ASSERT_GE(frames.size(), 2u);
    EXPECT_TRUE(IsInside(frames[1], &CallsFailingCheck));
    EXPECT_TRUE(e.Context()->callStack.modules.empty());
  }
  try {
    CallsThrowsDirectly(rc);
    FAIL() << "no throw";
  } catch (const hca::ResultCodeException& e) {
    const auto& frames = e.Context()->callStack.frames;
    ASSERT_GE(frames.size(), 2u);
    EXPECT_TRUE(IsInside(frames[1], &CallsThrowsDirectly));
  }
}

}  // namespace
