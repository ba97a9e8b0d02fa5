#include <ipc_runtime/application.h>
#include <ipc_runtime/printf_log_message.h>
#include <ipc_runtime/resource_provider.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace {

using hosipc::api_v1::ApplicationSettings;
using hosipc::api_v1::ILogger;
using hosipc_detail::api_v1::MessageCapacity;
using hosipc_detail::api_v1::ResourceProvider;

TEST(ResourceProvider, AllNullSettingsGiveFourWorkingDefaults) {
    ResourceProvider provider(MessageCapacity{}, 0, ApplicationSettings{});
    void* memory = provider.GetAllocator()->Allocate(80);
    ASSERT_NE(memory, nullptr);
    provider.GetAllocator()->Deallocate(memory);

    int code = 0;
    try {
        throw std::logic_error("anything");
    } catch (...) {
        provider.GetRetcodeConverter()->CatchException(code);
    }
    EXPECT_EQ(static_cast<unsigned int>(code), 0x9000000dU);
    EXPECT_NO_THROW(provider.GetRetcodeConverter()->ThrowException(static_cast<int>(0x80000046U)));

    std::string text = "left over";
    provider.GetStringConverter()->CatchException(text);
    EXPECT_TRUE(text.empty());
    EXPECT_THROW(provider.GetStringConverter()->ThrowException("boom"), std::runtime_error);

    hosipc_detail::api_v1::PrintfLogMessage<const char*> message("%s", "frame text");
    testing::internal::CaptureStderr();
    provider.GetLogger()->Print(ILogger::kConnectionFailure, message);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "frame text");

    hosipc::api_v1::EventLoopErrorDetails details{-1};
    EXPECT_EQ(provider.GetEventLoopErrorHandler()->OnCommunicationError(details), 0);
}

}  // namespace
