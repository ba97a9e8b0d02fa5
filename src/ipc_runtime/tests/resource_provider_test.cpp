#include <ipc_runtime/application.h>
#include <ipc_runtime/default_event_loop_error_handler.h>
#include <ipc_runtime/default_logger.h>
#include <ipc_runtime/default_retcode_exception_converter.h>
#include <ipc_runtime/default_string_exception_converter.h>
#include <ipc_runtime/resource_provider.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace {

using hosipc::api_v1::ApplicationSettings;
using hosipc::api_v1::ILogger;
using hosipc::api_v1::ILogMessage;
using hosipc_detail::api_v1::MessageCapacity;
using hosipc_detail::api_v1::ResourceProvider;
using hosipc_detail::api_v1::SharedResourceProvider;

class RecordingLogger final : public ILogger {
public:
    void Print(Verbosity, ILogMessage& message) override { text += message.Text(); }
    std::string text;
};

class TextOnlyMessage final : public ILogMessage {
public:
    explicit TextOnlyMessage(const char* text) : m_text(text) {}
    const char* Text() override { return m_text; }
    char* Text(char* buffer, unsigned long) override { return buffer; }
    unsigned long FormattedSize() override { return 0; }

private:
    const char* m_text;
};

TEST(ResourceProvider, AllNullSettingsGiveFourWorkingDefaults) {
    ResourceProvider provider(MessageCapacity{}, 0, ApplicationSettings{});

    ASSERT_NE(provider.GetAllocator(), nullptr);
    void* memory = provider.GetAllocator()->Allocate(80);
    ASSERT_NE(memory, nullptr);
    provider.GetAllocator()->Deallocate(memory);
    provider.GetAllocator()->Deallocate(nullptr);

    ASSERT_NE(dynamic_cast<hosipc_detail::api_v1::DefaultRetcodeExceptionConverter*>(
                  provider.GetRetcodeConverter().get()),
              nullptr);
    int code = 0;
    try {
        throw std::logic_error("anything");
    } catch (...) {
        provider.GetRetcodeConverter()->CatchException(code);
    }
    EXPECT_EQ(static_cast<unsigned int>(code), 0x9000000dU);
    EXPECT_NO_THROW(provider.GetRetcodeConverter()->ThrowException(static_cast<int>(0x80000046U)));

    ASSERT_NE(dynamic_cast<hosipc_detail::api_v1::DefaultStringExceptionConverter*>(
                  provider.GetStringConverter().get()),
              nullptr);
    std::string text = "left over";
    provider.GetStringConverter()->CatchException(text);
    EXPECT_TRUE(text.empty());
    try {
        provider.GetStringConverter()->ThrowException("boom");
        ADD_FAILURE() << "ThrowException returned";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "boom");
    }

    ASSERT_NE(dynamic_cast<hosipc_detail::api_v1::DefaultLogger*>(provider.GetLogger().get()), nullptr);
    TextOnlyMessage message("frame text");
    testing::internal::CaptureStderr();
    provider.GetLogger()->Print(ILogger::kConnectionFailure, message);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "frame text");

    ASSERT_NE(dynamic_cast<hosipc::api_v1::DefaultEventLoopErrorHandler*>(
                  provider.GetEventLoopErrorHandler().get()),
              nullptr);
    hosipc::api_v1::EventLoopErrorDetails details{-1};
    EXPECT_EQ(provider.GetEventLoopErrorHandler()->OnCommunicationError(details), 0);
    EXPECT_EQ(provider.GetEventLoopErrorHandler()->OnResourcesError(details), 0);
}

TEST(ResourceProvider, PresentSettingIsKeptAndOthersDefaulted) {
    auto logger = std::make_shared<RecordingLogger>();
    auto converter = std::make_shared<hosipc_detail::api_v1::DefaultStringExceptionConverter>();
    ApplicationSettings settings;
    settings.logger = logger;
    settings.stringConverter = converter;

    ResourceProvider provider(MessageCapacity{}, 7, settings);

    EXPECT_EQ(provider.GetLogger(), logger);
    EXPECT_EQ(provider.GetStringConverter(), converter);
    EXPECT_NE(provider.GetRetcodeConverter(), nullptr);
    EXPECT_NE(provider.GetEventLoopErrorHandler(), nullptr);
    EXPECT_EQ(provider.GetReserved(), 7U);
    TextOnlyMessage message("kept");
    provider.GetLogger()->Print(ILogger::kConnectionFailure, message);
    EXPECT_EQ(logger->text, "kept");
}

}  // namespace
