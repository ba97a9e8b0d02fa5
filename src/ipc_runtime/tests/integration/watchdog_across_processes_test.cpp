// The generated ApplicationWatchdog proxy against its stub in a server process of its own, over the
// hosted platform's channels.
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <ipc_runtime/idl/hl/app_manager/application_watchdog.h>

#include "support/server_process.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using hosipc::api_v1::ConnectionBuilder;
using hosipc::api_v1::ConnectViaDynamicChannel;
using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;
using hosipc_detail::idl_traits::ProxyBait;
using ipc_runtime_test::ScopedRuntimeDirectory;
using ipc_runtime_test::ServerProcess;

constexpr const char* kServerName = "hl.app_manager.TestManager";
constexpr const char* kService = "app_manager.applicationWatchdog";

std::vector<unsigned char> Name(const std::string& text) {
    return {text.begin(), text.end()};
}

class WatchdogAcrossProcesses : public testing::Test {
protected:
    void SetUp() override {
        m_server = ServerProcess::Start(HL_IPC_WATCHDOG_SERVER, kServerName);
        ASSERT_NE(m_server, nullptr) << "the watchdog server didn't come up";
    }

    std::unique_ptr<ApplicationWatchdog, hosipc_detail::api_v1::IpcDeleter> Connect() {
        const ConnectionBuilder<ConnectViaDynamicChannel> connector(kServerName, kService, 0, true);
        return hosipc_detail::idl_traits::MakeProxyImpl(
            connector, m_application.GetResourceProvider(),
            static_cast<ProxyBait<ApplicationWatchdog>*>(nullptr));
    }

    ScopedRuntimeDirectory m_directory;
    hosipc::api_v1::Application m_application{std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{})};
    std::unique_ptr<ServerProcess> m_server;
};

TEST_F(WatchdogAcrossProcesses, PingRoundTripCarriesNameAndRc) {
    auto proxy = Connect();
    int rc = -1;

    proxy->Ping(Name("AccessArbiter"), rc);
    EXPECT_EQ(rc, 13);
    proxy->Ping(Name(std::string(128, 'x')), rc);
    EXPECT_EQ(rc, 128);
    proxy->Ping(Name(""), rc);
    EXPECT_EQ(rc, 0);
}

TEST_F(WatchdogAcrossProcesses, KilledServerGivesTheTransportErrorText) {
    auto proxy = Connect();
    int rc = -1;
    proxy->Ping(Name("app"), rc);
    ASSERT_EQ(rc, 3);

    m_server->Kill();

    try {
        proxy->Ping(Name("app"), rc);
        FAIL() << "Ping returned after the server died";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "hl_app_manager_ApplicationWatchdog_Ping transport error");
    }
}

TEST_F(WatchdogAcrossProcesses, ServerSideThrowGivesTheServerErrorTextAndTheServerGoesOn) {
    auto proxy = Connect();
    int rc = 77;

    try {
        proxy->Ping(Name("throw"), rc);
        FAIL() << "Ping returned although the server threw";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "hl_app_manager_ApplicationWatchdog_Ping server error");
    }
    EXPECT_EQ(rc, 77);
    proxy->Ping(Name("next"), rc);
    EXPECT_EQ(rc, 4);
}

TEST_F(WatchdogAcrossProcesses, UnknownServiceIsLoggedToStderrAndMakeProxyThrows) {
    const ConnectionBuilder<ConnectViaDynamicChannel> connector(kServerName, "app_manager.nothing", 0, true);

    testing::internal::CaptureStderr();
    try {
        hosipc_detail::idl_traits::MakeProxyImpl(connector, m_application.GetResourceProvider(),
                                                 static_cast<ProxyBait<ApplicationWatchdog>*>(nullptr));
        ADD_FAILURE() << "a proxy was made for an unknown service";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "hosipc::MakeProxy(): error connecting to endpoint.");
    }
    const std::string diagnostics = testing::internal::GetCapturedStderr();
    EXPECT_NE(diagnostics.find(
                  "Failed to connect to \"hl.app_manager.TestManager\":\"app_manager.nothing\" with rc = "),
              std::string::npos)
        << diagnostics;
}

}  // namespace
