#include <ipc_runtime/connection_builder.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using hosipc::api_v1::ConnectionBuilder;
using hosipc::api_v1::ConnectViaDynamicChannel;
using hosipc::api_v1::DynamicChannelCalls;
using hosipc::api_v1::ILogger;
using hosipc::api_v1::ILogMessage;
using hosipc_detail::api_v1::EndpointHandle;
using hosipc_detail::api_v1::MessageCapacity;
using hosipc_detail::api_v1::ResourceProvider;
using hosipc_detail::api_v1::SharedResourceProvider;

// What the fake platform answers, and what it was asked.
struct FakeChannels {
    int result = 0;
    unsigned int handle = 0;
    unsigned int riid = 0;
    std::string server;
    std::string service;
    unsigned int timeout = 0;
    std::vector<unsigned int> closed;
};
FakeChannels g_channels;

int FakeConnect(const char* server, const char* service, unsigned int timeoutMs, unsigned int* handle,
                unsigned int* riid) {
    g_channels.server = server;
    g_channels.service = service;
    g_channels.timeout = timeoutMs;
    if (g_channels.result == 0) {
        *handle = g_channels.handle;
        *riid = g_channels.riid;
    }
    return g_channels.result;
}

int FakeClose(unsigned int handle) {
    g_channels.closed.push_back(handle);
    return 0;
}

class RecordingLogger final : public ILogger {
public:
    void Print(Verbosity verbosity, ILogMessage& message) override {
        verbosities.push_back(verbosity);
        lines.emplace_back(message.Text());
    }
    std::vector<int> verbosities;
    std::vector<std::string> lines;
};

class ConnectionBuilderTest : public testing::Test {
protected:
    ConnectionBuilderTest() {
        g_channels = FakeChannels{};
        hosipc::api_v1::ApplicationSettings settings;
        settings.logger = m_logger;
        m_resources = std::make_shared<ResourceProvider>(MessageCapacity{}, 0, settings);
    }

    ConnectionBuilder<ConnectViaDynamicChannel> Builder(std::uint32_t timeout, bool noLimit) {
        return ConnectionBuilder<ConnectViaDynamicChannel>(m_server, m_service, timeout, noLimit,
                                                           DynamicChannelCalls{&FakeConnect, &FakeClose});
    }

    const std::string m_server = "hl.app_manager.Server";
    const std::string m_service = "app_manager.applicationWatchdog";
    std::shared_ptr<RecordingLogger> m_logger = std::make_shared<RecordingLogger>();
    SharedResourceProvider m_resources;
};

TEST_F(ConnectionBuilderTest, SuccessGivesTheEndpointHandleAndRiid) {
    g_channels.handle = 42;
    g_channels.riid = 7;
    EndpointHandle endpoint;

    EXPECT_EQ(Builder(250, false).Connect(endpoint, m_resources), 0);

    EXPECT_EQ(endpoint.GetHandle(), 42U);
    EXPECT_EQ(endpoint.GetRiid(), 7);
    EXPECT_TRUE(endpoint.IsOwned());
    EXPECT_EQ(g_channels.server, m_server);
    EXPECT_EQ(g_channels.service, m_service);
    EXPECT_EQ(g_channels.timeout, 250U);
    EXPECT_TRUE(m_logger->lines.empty());
    // The endpoint closes 42 through the platform when it dies; in this process no such handle exists,
    // so that close fails harmlessly.
}

TEST_F(ConnectionBuilderTest, NoLimitFlagWaitsWithoutLimitWhateverTheTimeout) {
    g_channels.result = static_cast<int>(0x90000014U);
    EndpointHandle endpoint;

    Builder(0, true).Connect(endpoint, m_resources);

    EXPECT_EQ(g_channels.timeout, 0xffffffffU);
}

TEST_F(ConnectionBuilderTest, ConnectFailureIsLoggedAndReturned) {
    g_channels.result = static_cast<int>(0x90000013U);
    EndpointHandle endpoint;

    EXPECT_EQ(Builder(0, true).Connect(endpoint, m_resources), static_cast<int>(0x90000013U));

    EXPECT_EQ(endpoint.GetHandle(), EndpointHandle::kInvalidHandle);
    EXPECT_FALSE(endpoint.IsOwned());
    ASSERT_EQ(m_logger->lines.size(), 1U);
    EXPECT_EQ(m_logger->verbosities[0], 100);
    EXPECT_EQ(m_logger->lines[0],
              "Failed to connect to \"hl.app_manager.Server\":\"app_manager.applicationWatchdog\" with rc = "
              "-1879048173\n");
    EXPECT_TRUE(g_channels.closed.empty());
}

TEST_F(ConnectionBuilderTest, RiidOverUint16ClosesTheHandleAndLeavesTheEndpointEmpty) {
    g_channels.handle = 17;
    g_channels.riid = 0x10000;
    EndpointHandle endpoint;

    EXPECT_EQ(Builder(0, true).Connect(endpoint, m_resources), static_cast<int>(0x90000002U));

    EXPECT_EQ(g_channels.closed, std::vector<unsigned int>{17});
    EXPECT_EQ(endpoint.GetHandle(), EndpointHandle::kInvalidHandle);
    EXPECT_EQ(endpoint.GetRiid(), EndpointHandle::kInvalidRiid);
    EXPECT_FALSE(endpoint.IsOwned());
    ASSERT_EQ(m_logger->lines.size(), 1U);
    EXPECT_EQ(
        m_logger->lines[0],
        "Invalid riid for \"hl.app_manager.Server\":\"app_manager.applicationWatchdog\" because 65536 > "
        "UINT16_MAX\n");
}

TEST_F(ConnectionBuilderTest, LargestRiidIsAccepted) {
    g_channels.handle = EndpointHandle::kInvalidHandle;
    g_channels.riid = 0xffff;
    EndpointHandle endpoint;

    EXPECT_EQ(Builder(0, true).Connect(endpoint, m_resources), 0);
    EXPECT_EQ(endpoint.GetRiid(), 0xffff);
    EXPECT_TRUE(g_channels.closed.empty());
}

}  // namespace
