#include <ipc_runtime/idl/hl/app_manager/application_watchdog.h>

#include "support/fake_connector.h"
#include "support/fake_transport.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;
using hosipc_detail::api_v1::MessageCapacity;
using hosipc_detail::api_v1::ResourceProvider;
using hosipc_detail::api_v1::SharedResourceProvider;
using hosipc_detail::idl_traits::Proxy;
using hosipc_detail::idl_traits::ProxyBait;
using hosipc_detail::idl_traits::Stub;
using ipc_runtime_test::FakeConnector;
using ipc_runtime_test::FakeTransport;

constexpr std::uint16_t kRiid = 5;

SharedResourceProvider MakeResources() {
    return std::make_shared<ResourceProvider>(MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{});
}

std::vector<unsigned char> Name(const std::string& text) {
    return {text.begin(), text.end()};
}

template <typename T>
T ReadAt(const unsigned char* bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes + offset, sizeof value);
    return value;
}

template <typename T>
void WriteAt(unsigned char* bytes, std::size_t offset, T value) {
    std::memcpy(bytes + offset, &value, sizeof value);
}

class RecordingWatchdog final : public ApplicationWatchdog {
public:
    void Ping(const std::vector<unsigned char>& appName, int& rc) override {
        received.push_back(std::string(appName.begin(), appName.end()));
        rcOnEntry = rc;
        if (throwIt) {
            throw std::logic_error("manager broke");
        }
        rc = answer;
    }

    std::vector<std::string> received;
    int rcOnEntry = -1;
    int answer = 0;
    bool throwIt = false;
};

class WatchdogProxyTest : public testing::Test {
protected:
    void SetUp() override {
        m_proxy = hosipc_detail::idl_traits::MakeProxyImpl(
            m_connector, m_resources, static_cast<ProxyBait<ApplicationWatchdog>*>(nullptr));
        ASSERT_NE(m_proxy, nullptr);
    }

    void Attach(FakeTransport& transport) {
        transport.Attach(static_cast<Proxy<ApplicationWatchdog>&>(*m_proxy).TransportForTesting());
    }

    SharedResourceProvider m_resources = MakeResources();
    FakeConnector m_connector{0, kRiid};
    std::unique_ptr<ApplicationWatchdog, hosipc_detail::api_v1::IpcDeleter> m_proxy;
};

TEST_F(WatchdogProxyTest, PingRequestHasTheWireLayoutAndRcComesFromOffset24) {
    FakeTransport transport([](const nk_message*, const nk_arena*, nk_message* response, nk_arena*) {
        auto* bytes = reinterpret_cast<unsigned char*>(response);
        WriteAt<std::uint32_t>(bytes, 4, 0x20);
        WriteAt<std::int32_t>(bytes, 24, -7);
        return 0;
    });
    Attach(transport);
    int rc = 1234;

    m_proxy->Ping(Name("AccessArbiter"), rc);

    EXPECT_EQ(rc, -7);
    ASSERT_EQ(transport.Calls(), 1);
    const auto& request = transport.LastRequest();
    ASSERT_EQ(request.size(), 32U);
    EXPECT_EQ(ReadAt<std::uint16_t>(request.data(), 0), kRiid);
    EXPECT_EQ(ReadAt<std::uint16_t>(request.data(), 2), 0);
    EXPECT_EQ(ReadAt<std::uint32_t>(request.data(), 4), 0x20U);
    EXPECT_EQ(std::vector<unsigned char>(request.begin() + 8, request.begin() + 24),
              std::vector<unsigned char>(16, 0));
    EXPECT_EQ(ReadAt<std::uint32_t>(request.data(), 24), 0U);
    EXPECT_EQ(ReadAt<std::uint32_t>(request.data(), 28), 13U);
    EXPECT_EQ(transport.LastArena(), Name("AccessArbiter"));
    EXPECT_EQ(transport.LastArenaCapacity(), 128U);
    EXPECT_EQ(transport.LastResponseCapacityWord(), 0x20U);
}

TEST_F(WatchdogProxyTest, TransportFailureThrowsTransportText) {
    FakeTransport transport(
        [](const nk_message*, const nk_arena*, nk_message*, nk_arena*) { return NK_ECLOSED; });
    Attach(transport);
    int rc = 0;

    try {
        m_proxy->Ping(Name("app"), rc);
        FAIL() << "Ping returned";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "hl_app_manager_ApplicationWatchdog_Ping transport error");
    }
}

TEST_F(WatchdogProxyTest, ServerFailureBitThrowsServerText) {
    FakeTransport transport([](const nk_message*, const nk_arena*, nk_message* response, nk_arena*) {
        response->sizeFlags = 0x80000018U;
        return 0;
    });
    Attach(transport);
    int rc = 0;

    try {
        m_proxy->Ping(Name("app"), rc);
        FAIL() << "Ping returned";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "hl_app_manager_ApplicationWatchdog_Ping server error");
    }
}

TEST_F(WatchdogProxyTest, NameOver128BytesIsRefusedWithoutSending) {
    FakeTransport transport([](const nk_message*, const nk_arena*, nk_message*, nk_arena*) { return 0; });
    Attach(transport);
    int rc = 0;

    EXPECT_THROW(m_proxy->Ping(std::vector<unsigned char>(129, 'a'), rc), std::length_error);
    EXPECT_EQ(transport.Calls(), 0);
    EXPECT_NO_THROW(m_proxy->Ping(std::vector<unsigned char>(128, 'a'), rc));
    EXPECT_EQ(transport.Calls(), 1);
}

TEST(MakeProxyImpl, ConnectFailureThrowsTheConnectText) {
    const FakeConnector connector(static_cast<std::int32_t>(0x90000013U), kRiid);

    try {
        hosipc_detail::idl_traits::MakeProxyImpl(connector, MakeResources(),
                                                 static_cast<ProxyBait<ApplicationWatchdog>*>(nullptr));
        FAIL() << "a proxy was made";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "hosipc::MakeProxy(): error connecting to endpoint.");
    }
    EXPECT_EQ(connector.Connects(), 1);
}

TEST(MakeProxyImpl, ProxySharesTheProviderUntilDestroyed) {
    SharedResourceProvider resources = MakeResources();
    const FakeConnector connector(0, kRiid);
    auto proxy = hosipc_detail::idl_traits::MakeProxyImpl(
        connector, resources, static_cast<ProxyBait<ApplicationWatchdog>*>(nullptr));

    EXPECT_EQ(resources.UseCount(), 2);
    EXPECT_EQ(static_cast<Proxy<ApplicationWatchdog>&>(*proxy).GetEndpoint().GetRiid(), kRiid);
    EXPECT_EQ(proxy.get_deleter().GetAllocator(), resources->GetAllocator());
    proxy.reset();
    EXPECT_EQ(resources.UseCount(), 1);
}

class WatchdogStubTest : public testing::Test {
protected:
    static constexpr unsigned char kPrepared = 0xCC;

    WatchdogStubTest() {
        m_response.fill(kPrepared);
        m_arenaBytes.fill(0);
    }

    // A Ping request as a client would send it, with name at arena offset nameOffset.
    void PrepareRequest(std::uint16_t iid, std::uint16_t mid, const std::string& name,
                        std::uint32_t nameOffset = 0) {
        m_request.fill(0);
        WriteAt<std::uint16_t>(m_request.data(), 0, iid);
        WriteAt<std::uint16_t>(m_request.data(), 2, mid);
        WriteAt<std::uint32_t>(m_request.data(), 4, 0x20);
        WriteAt<std::uint32_t>(m_request.data(), 24, nameOffset);
        WriteAt<std::uint32_t>(m_request.data(), 28, static_cast<std::uint32_t>(name.size()));
        std::memcpy(m_arenaBytes.data() + nameOffset, name.data(), name.size());
        m_requestArena = nk_arena{m_arenaBytes.data(), m_arenaBytes.data() + nameOffset + name.size(),
                                  m_arenaBytes.data() + m_arenaBytes.size()};
    }

    void Dispatch() {
        nk_arena responseArena{nullptr, nullptr, nullptr};
        m_stub.DispatchRequest(1, reinterpret_cast<const nk_message*>(m_request.data()), &m_requestArena,
                               reinterpret_cast<nk_message*>(m_response.data()), &responseArena);
    }

    RecordingWatchdog m_implementation;
    Stub<ApplicationWatchdog> m_stub{&m_implementation, MakeResources()};
    alignas(8) std::array<unsigned char, 32> m_request{};
    alignas(8) std::array<unsigned char, 64> m_response{};
    std::array<unsigned char, 128> m_arenaBytes{};
    nk_arena m_requestArena{};
};

TEST_F(WatchdogStubTest, PingAnswerHasTheWireLayout) {
    m_implementation.answer = 0x12345678;
    PrepareRequest(3, 0, "AccessArbiter", 16);

    Dispatch();

    ASSERT_EQ(m_implementation.received, std::vector<std::string>{"AccessArbiter"});
    EXPECT_EQ(m_implementation.rcOnEntry, 0);
    EXPECT_EQ(ReadAt<std::uint16_t>(m_response.data(), 0), 3);
    EXPECT_EQ(ReadAt<std::uint16_t>(m_response.data(), 2), 0);
    EXPECT_EQ(ReadAt<std::uint32_t>(m_response.data(), 4), 0x20U);
    for (std::size_t i = 8; i < 24; ++i) {
        EXPECT_EQ(m_response[i], kPrepared) << "header byte " << i;
    }
    const std::array<unsigned char, 4> rc{0x78, 0x56, 0x34, 0x12};
    EXPECT_EQ(0, std::memcmp(m_response.data() + 24, rc.data(), rc.size()));
    EXPECT_EQ(m_response[28], kPrepared);
}

TEST_F(WatchdogStubTest, ThrowingImplementationGivesBareServerFailure) {
    m_implementation.throwIt = true;
    PrepareRequest(9, 0, "app");

    testing::internal::CaptureStderr();
    Dispatch();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    EXPECT_EQ(m_implementation.received.size(), 1U);
    EXPECT_EQ(ReadAt<std::uint16_t>(m_response.data(), 0), 9);
    EXPECT_EQ(ReadAt<std::uint16_t>(m_response.data(), 2), 0);
    EXPECT_EQ(ReadAt<std::uint32_t>(m_response.data(), 4), 0x80000018U);
    EXPECT_EQ(m_response[24], kPrepared);
}

TEST_F(WatchdogStubTest, UnknownMidLeavesResponseUntouched) {
    PrepareRequest(3, 1, "app");
    const auto before = m_response;

    Dispatch();

    EXPECT_TRUE(m_implementation.received.empty());
    EXPECT_EQ(m_response, before);
}

TEST_F(WatchdogStubTest, NameOutsideTheArenaIsALoggedServerFailureWithoutCall) {
    PrepareRequest(3, 0, "app");
    WriteAt<std::uint32_t>(m_request.data(), 24, 127);

    testing::internal::CaptureStderr();
    Dispatch();
    const std::string diagnostics = testing::internal::GetCapturedStderr();

    EXPECT_TRUE(m_implementation.received.empty());
    EXPECT_EQ(ReadAt<std::uint32_t>(m_response.data(), 4), 0x80000018U);
    EXPECT_NE(diagnostics.find("malformed request of Ping"), std::string::npos) << diagnostics;
}

TEST_F(WatchdogStubTest, ShortRequestIsAServerFailureWithoutCall) {
    PrepareRequest(3, 0, "app");
    WriteAt<std::uint32_t>(m_request.data(), 4, 24);

    testing::internal::CaptureStderr();
    Dispatch();
    const std::string diagnostics = testing::internal::GetCapturedStderr();

    EXPECT_TRUE(m_implementation.received.empty());
    EXPECT_EQ(ReadAt<std::uint32_t>(m_response.data(), 4), 0x80000018U);
    EXPECT_NE(diagnostics.find("malformed request of Ping: the request is 24 bytes, expected 32"),
              std::string::npos)
        << diagnostics;
}

}  // namespace
