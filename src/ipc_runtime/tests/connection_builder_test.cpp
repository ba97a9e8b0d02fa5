// ConnectionBuilder over fake channel calls: what it asks, what it logs, and the riid check.
#include <ipc_runtime/connection_builder.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using hosipc_detail::api_v1::EndpointHandle;

struct FakeChannels {
    int result = 0;
    unsigned int riid = 0;
    unsigned int timeout = 0;
    std::vector<unsigned int> closed;
};
FakeChannels g_channels;

int FakeConnect(const char*, const char*, unsigned int timeoutMs, unsigned int* handle, unsigned int* riid) {
    g_channels.timeout = timeoutMs;
    *handle = 17;
    *riid = g_channels.riid;
    return g_channels.result;
}

int FakeClose(unsigned int handle) {
    g_channels.closed.push_back(handle);
    return 0;
}

class RecordingLogger final : public hosipc::api_v1::ILogger {
public:
    void Print(Verbosity, hosipc::api_v1::ILogMessage& message) override {
        lines.emplace_back(message.Text());
    }
    std::vector<std::string> lines;
};

TEST(ConnectionBuilderTest, FailureOrRiidOverUint16IsLoggedAndLeavesTheEndpointEmpty) {
    const struct {
        int result;
        unsigned int riid;
        bool noLimit;
        int rc;
        unsigned int timeout;
        std::vector<unsigned int> closed;
        std::string logged;
    } cases[] = {
        {0, 7, false, 0, 250, {}, ""},
        {0, 0xffff, false, 0, 250, {}, ""},
        {static_cast<int>(0x90000013U),
         1,
         true,
         static_cast<int>(0x90000013U),
         0xffffffffU,
         {},
         "Failed to connect to \"hl.app_manager.Server\":\"app_manager.applicationWatchdog\" with rc = "
         "-1879048173\n"},
        {0,
         0x10000,
         true,
         static_cast<int>(0x90000002U),
         0xffffffffU,
         {17},
         "Invalid riid for \"hl.app_manager.Server\":\"app_manager.applicationWatchdog\" because 65536 > "
         "UINT16_MAX\n"},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.riid);
        g_channels = FakeChannels{item.result, item.riid, 0, {}};
        auto logger = std::make_shared<RecordingLogger>();
        hosipc::api_v1::ApplicationSettings settings;
        settings.logger = logger;
        const auto resources = std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
            hosipc_detail::api_v1::MessageCapacity{}, 0, settings);
        const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> builder(
            "hl.app_manager.Server", "app_manager.applicationWatchdog", 250, item.noLimit,
            hosipc::api_v1::DynamicChannelCalls{&FakeConnect, &FakeClose});
        EndpointHandle endpoint;  // 17 is no handle of this process: closing it at the end does nothing
        EXPECT_EQ(builder.Connect(endpoint, resources), item.rc);
        EXPECT_EQ(g_channels.timeout, item.timeout);
        EXPECT_EQ(g_channels.closed, item.closed);
        EXPECT_EQ(endpoint.GetHandle(), item.rc == 0 ? 17U : EndpointHandle::kInvalidHandle);
        EXPECT_EQ(endpoint.GetRiid(), item.rc == 0 ? item.riid : EndpointHandle::kInvalidRiid);
        EXPECT_EQ(endpoint.IsOwned(), item.rc == 0);
        EXPECT_EQ(logger->lines,
                  item.logged.empty() ? std::vector<std::string>{} : std::vector<std::string>{item.logged});
    }
}

}  // namespace
