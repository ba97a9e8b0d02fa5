// The ApplicationWatchdog proxy over a fake transport and its stub fed with hand-made requests.
#include <ipc_runtime/idl/hl/app_manager/application_watchdog.h>

#include "support/fake_connector.h"
#include "support/fake_transport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;
using hosipc_detail::idl_traits::ProxyBait;
using ipc_runtime_test::FakeConnector;
using ipc_runtime_test::FakeTransport;

constexpr std::uint16_t kRiid = 5;

hosipc_detail::api_v1::SharedResourceProvider MakeResources() {
    return std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{});
}

auto MakeProxy(const FakeConnector& connector) {
    return hosipc_detail::idl_traits::MakeProxyImpl(connector, MakeResources(),
                                                    static_cast<ProxyBait<ApplicationWatchdog>*>(nullptr));
}

NkHosTransport& TransportOf(ApplicationWatchdog& proxy) {
    return static_cast<hosipc_detail::idl_traits::Proxy<ApplicationWatchdog>&>(proxy).TransportForTesting();
}

TEST(WatchdogProxyTest, PingRequestHasTheWireLayoutAndRcComesFromOffset24) {
    auto proxy = MakeProxy(FakeConnector(0, kRiid));
    FakeTransport transport(TransportOf(*proxy), [](nk_message* response) {
        const std::int32_t rc = -7;
        std::memcpy(reinterpret_cast<unsigned char*>(response) + 24, &rc, sizeof rc);
        return 0;
    });
    int rc = 1234;
    proxy->Ping({'A', 'c', 'c', 'e', 's', 's'}, rc);
    EXPECT_EQ(rc, -7);
    // iid = riid, mid 0, size 32, 16 zero bytes, then the name's arena offset 0 and size 6.
    std::vector<unsigned char> expected(32, 0);
    expected[0] = kRiid;
    expected[4] = 0x20;
    expected[28] = 6;
    EXPECT_EQ(transport.lastRequest, expected);
    EXPECT_EQ(transport.lastArena, (std::vector<unsigned char>{'A', 'c', 'c', 'e', 's', 's'}));
    EXPECT_EQ(transport.lastArenaCapacity, 128U);
    EXPECT_EQ(transport.lastResponseWord, 0x20U);
}

TEST(WatchdogProxyTest, AFailedConnectGivesNoProxyButItsText) {
    try {
        MakeProxy(FakeConnector(static_cast<std::int32_t>(0x90000013U), kRiid));
        ADD_FAILURE() << "a proxy was made";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "hosipc::MakeProxy(): error connecting to endpoint.");
    }
}

class RecordingWatchdog final : public ApplicationWatchdog {
public:
    void Ping(const std::vector<unsigned char>& appName, int& rc) override {
        received.emplace_back(appName.begin(), appName.end());
        if (throwIt) {
            throw std::logic_error("manager broke");
        }
        rc = 0x12345678;
    }
    std::vector<std::string> received;
    bool throwIt = false;
};

// Dispatches a Ping request (iid, mid, size word, name offset, "AccessArbiter" at arena offset 16)
// into a response prepared with 0xCC bytes.
std::array<unsigned char, 40> Dispatch(RecordingWatchdog& implementation, std::uint16_t mid,
                                       std::uint32_t sizeWord = 0x20, std::uint32_t nameOffset = 16) {
    alignas(8) std::array<unsigned char, 32> request{};
    alignas(8) std::array<unsigned char, 40> response{};
    std::array<unsigned char, 128> arenaBytes{};
    response.fill(0xCC);
    const std::uint32_t words[] = {3u | mid << 16, sizeWord, 0, 0, 0, 0, nameOffset, 13};
    std::memcpy(request.data(), words, sizeof words);
    std::memcpy(arenaBytes.data() + 16, "AccessArbiter", 13);
    const nk_arena requestArena{arenaBytes.data(), arenaBytes.data() + 29,
                                arenaBytes.data() + arenaBytes.size()};
    nk_arena responseArena{nullptr, nullptr, nullptr};
    hosipc_detail::idl_traits::Stub<ApplicationWatchdog> stub(&implementation, MakeResources());
    stub.DispatchRequest(1, reinterpret_cast<const nk_message*>(request.data()), &requestArena,
                         reinterpret_cast<nk_message*>(response.data()), &responseArena);
    return response;
}

TEST(WatchdogStubTest, PingAnswerHasTheWireLayoutAndUnknownMidLeavesTheResponseUntouched) {
    RecordingWatchdog implementation;
    const auto response = Dispatch(implementation, 0);
    ASSERT_EQ(implementation.received, std::vector<std::string>{"AccessArbiter"});
    std::array<unsigned char, 40> prepared;
    prepared.fill(0xCC);
    // iid 3, mid 0, size 32, the rc little-endian at 24; the rest of the header as prepared.
    auto expected = prepared;
    const unsigned char answer[] = {3, 0, 0, 0, 0x20, 0, 0, 0};
    std::copy(std::begin(answer), std::end(answer), expected.begin());
    const unsigned char rc[] = {0x78, 0x56, 0x34, 0x12};
    std::copy(std::begin(rc), std::end(rc), expected.begin() + 24);
    EXPECT_EQ(response, expected);
    EXPECT_EQ(Dispatch(implementation, 1), prepared);
    EXPECT_EQ(implementation.received.size(), 1U);
}

TEST(WatchdogStubTest, ThrowingImplementationOrMalformedRequestGivesABareServerFailure) {
    const struct {
        bool throwIt;
        std::uint32_t sizeWord;
        std::uint32_t nameOffset;
        std::size_t calls;
        const char* logged;
    } cases[] = {{true, 0x20, 16, 1, ""},
                 {false, 0x20, 120, 0, "malformed request of Ping"},
                 {false, 24, 16, 0, "malformed request of Ping: the request is 24 bytes, expected 32"}};
    for (const auto& item : cases) {
        SCOPED_TRACE(item.nameOffset);
        RecordingWatchdog implementation;
        implementation.throwIt = item.throwIt;
        ::testing::internal::CaptureStderr();
        const auto response = Dispatch(implementation, 0, item.sizeWord, item.nameOffset);
        const std::string diagnostics = ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(implementation.received.size(), item.calls);
        // iid 3, mid 0 and the bare server-failure word 0x80000018.
        EXPECT_EQ(std::vector<unsigned char>(response.begin(), response.begin() + 8),
                  (std::vector<unsigned char>{3, 0, 0, 0, 0x18, 0, 0, 0x80}));
        EXPECT_EQ(response[24], 0xCC);
        EXPECT_NE(diagnostics.find(item.logged), std::string::npos) << diagnostics;
        if (*item.logged == '\0') {
            EXPECT_EQ(diagnostics, "");
        }
    }
}

}  // namespace
