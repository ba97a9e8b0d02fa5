// Runs in an executable of its own: it replaces the global operator new so that one allocation can
// be made to fail, which must not touch other tests.

#include <access_arbiter/interactors/user_decision_interactor.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

// When set, the next allocation through operator new on this thread fails (and clears the flag), so
// that the handler that runs after it can allocate again.
thread_local bool t_failNextAllocation = false;

void* Allocate(std::size_t size) {
    if (t_failNextAllocation) {
        t_failNextAllocation = false;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

}  // namespace

// Every plain form is replaced, so that no pair mixes this allocator with the library's.
void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return Allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace {

using access_arbiter::interactors::UserDecisionInteractor;
using access_arbiter::ui::mode::UserDecision;
using hos::logger::LogLevel;

TEST(UserDecisionInteractor, SetThatRunsOutOfMemoryLogsAndReturnsUnspecifiedError) {
    UserDecisionInteractor interactor;
    hos::logger::LogCaptureForTesting capture;

    t_failNextAllocation = true;
    const std::int32_t result = interactor.SetUserDecision(UserDecision::Approve);
    ASSERT_FALSE(t_failNextAllocation) << "the push must have allocated its node";

    EXPECT_EQ(result, static_cast<std::int32_t>(0x8000004Bu));
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, LogLevel::Error);
    EXPECT_EQ(records[0].function, "SetUserDecision");
    EXPECT_EQ(
        records[0].message,
        "Failed to push user decision with code=-2147483573, message: 'std::exception: std::bad_alloc'");
}

TEST(UserDecisionInteractor, FailedSetLeavesTheQueueUsable) {
    UserDecisionInteractor interactor;
    hos::logger::LogCaptureForTesting capture;

    t_failNextAllocation = true;
    EXPECT_NE(interactor.SetUserDecision(UserDecision::Approve), 0);

    EXPECT_EQ(interactor.SetUserDecision(UserDecision::Decline), 0);
    UserDecision decision = UserDecision::Approve;
    EXPECT_EQ(interactor.GetUserDecision(decision), 0);
    EXPECT_EQ(decision, UserDecision::Decline) << "the failed Approve must not have been queued";
}

}  // namespace
