// The generated ApplicationWatchdog proxy against its stub in a server process of its own, over the
// hosted platform's channels.
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <ipc_runtime/idl/hl/app_manager/application_watchdog.h>

#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;

constexpr const char* kServerName = "hl.app_manager.TestManager";

std::vector<unsigned char> Name(const std::string& text) {
    return {text.begin(), text.end()};
}

class WatchdogAcrossProcesses : public testing::Test {
protected:
    void SetUp() override {
        m_server = hos::platform::testing::PeerProcess::Start({HL_IPC_WATCHDOG_SERVER, kServerName});
        ASSERT_NE(m_server, nullptr) << "the watchdog server didn't come up";
        const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
            kServerName, "app_manager.applicationWatchdog", 0, true);
        m_proxy = hosipc_detail::idl_traits::MakeProxyImpl(
            connector, m_application.GetResourceProvider(),
            static_cast<hosipc_detail::idl_traits::ProxyBait<ApplicationWatchdog>*>(nullptr));
    }

    // The text of what Ping("name") throws, or "" when it returns.
    std::string PingFailure(const std::string& name, int& rc) {
        try {
            m_proxy->Ping(Name(name), rc);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    hosipc::api_v1::Application m_application{std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{})};
    std::unique_ptr<hos::platform::testing::PeerProcess> m_server;
    std::unique_ptr<ApplicationWatchdog, hosipc_detail::api_v1::IpcDeleter> m_proxy;
};

TEST_F(WatchdogAcrossProcesses, PingRoundTripCarriesNameAndRcAndServerThrowGivesTheServerErrorText) {
    int rc = -1;
    for (const std::string& name : {std::string("AccessArbiter"), std::string(128, 'x'), std::string()}) {
        EXPECT_EQ(PingFailure(name, rc), "");
        EXPECT_EQ(rc, static_cast<int>(name.size()));
    }
    rc = 77;
    EXPECT_EQ(PingFailure("throw", rc), "hl_app_manager_ApplicationWatchdog_Ping server error");
    EXPECT_EQ(rc, 77);
    EXPECT_EQ(PingFailure("next", rc), "");
    EXPECT_EQ(rc, 4);
}

TEST_F(WatchdogAcrossProcesses, KilledServerGivesTheTransportErrorText) {
    int rc = -1;
    ASSERT_EQ(PingFailure("app", rc), "");
    ASSERT_EQ(rc, 3);
    m_server->Kill();
    EXPECT_EQ(PingFailure("app", rc), "hl_app_manager_ApplicationWatchdog_Ping transport error");
}

}  // namespace
