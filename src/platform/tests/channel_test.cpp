// Connect and call between this process and a peer server process: names, mismatched answers,
// timeouts and a peer that dies. Requests sent without waiting are malformed_frame_test's part, a
// server failure hl-ask's process test.
#include <gtest/gtest.h>

#include <thread>

#include <platform/platform.h>

#include "peer/test_peer_protocol.h"
#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"
#include "support/test_call.h"

namespace hos::platform {
namespace {

using namespace std::chrono_literals;
using testing::CallThrough;
using testing::TestRequest;
using testing::U32Bytes;
namespace peer = test_peer;

constexpr const char* kServer = "echo-peer";

class ChannelTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_peer = testing::PeerProcess::Start({HL_PLATFORM_TEST_PEER, "serve", kServer});
        ASSERT_NE(m_peer, nullptr) << "the test peer did not come up";
        ASSERT_EQ(KnCmConnect(kServer, peer::kEchoEndpointFull, 5000, &m_handle, &m_riid), 0);
        NkHosTransport_Init(&m_transport, m_handle, 0, 0);
        NkHosSetTransportTimeouts(&m_transport, NK_TIMEOUT_INFINITE, 20000);
    }
    void TearDown() override { KnHandleClose(m_handle); }

    TestRequest Request(uint16_t mid, uint32_t field = 0) {
        TestRequest request;
        request.iid = static_cast<uint16_t>(m_riid);
        request.mid = mid;
        request.fields = U32Bytes(field);
        return request;
    }

    testing::ScopedRuntimeDirectory m_directory;
    std::unique_ptr<testing::PeerProcess> m_peer;
    unsigned int m_handle = NK_INVALID_HANDLE;
    unsigned int m_riid = NK_INVALID_RIID;
    NkHosTransport m_transport{};
};

TEST_F(ChannelTest, HandshakeResolvesEveryNameOfAnEndpointAndRefusesOthers) {
    const struct {
        const char* name;
        int rc;
        unsigned int riid;
    } cases[] = {{"echo", 0, peer::kEchoRiid},
                 {"echo.echo", 0, peer::kEchoRiid},
                 {"hl.test.Echo", 0, peer::kEchoRiid},
                 {"hl.test.Echo.echo", 0, peer::kEchoRiid},
                 {"waylandClient", 0, 0},
                 {"hl.test.Nothing", NK_ENOENDPOINT, 88}};
    for (const auto& item : cases) {
        SCOPED_TRACE(item.name);
        unsigned int handle = 77;
        unsigned int riid = 88;
        ASSERT_EQ(KnCmConnect(kServer, item.name, 5000, &handle, &riid), item.rc);
        EXPECT_EQ(riid, item.riid);
        EXPECT_EQ(KnHandleClose(handle), item.rc == 0 ? 0 : NK_EBADHANDLE);
    }
}

TEST_F(ChannelTest, ResponseWithAnotherIidOrMidFailsUnlessTheRequestIidIsAny) {
    const struct {
        uint16_t iid;
        uint16_t mid;
        int rc;
    } cases[] = {{static_cast<uint16_t>(m_riid), peer::kWrongMid, NK_EMISMATCH},
                 {static_cast<uint16_t>(m_riid), peer::kWrongIid, NK_EMISMATCH},
                 {NK_IID_ANY, peer::kWrongIid, 0},  // the answer's iid 0xffff + 1 wraps to 0
                 {NK_IID_ANY, peer::kWrongMid, NK_EMISMATCH},
                 {static_cast<uint16_t>(m_riid), peer::kEcho, 0}};
    for (const auto& item : cases) {
        SCOPED_TRACE(::testing::Message() << item.iid << "/" << item.mid);
        TestRequest request = Request(item.mid);
        request.iid = item.iid;
        EXPECT_EQ(CallThrough(m_transport, request).rc, item.rc);
    }
}

TEST_F(ChannelTest, CallThatRunsOutOfTimeReturnsMinusElevenAndLaterCallsGetTheirOwnAnswer) {
    NkHosSetTransportTimeouts(&m_transport, NK_TIMEOUT_INFINITE, 100);
    EXPECT_EQ(CallThrough(m_transport, Request(peer::kSlowEcho, 600)).rc, NK_TRANSPORT_TIMEOUT);
    NkHosSetTransportTimeouts(&m_transport, NK_TIMEOUT_INFINITE, 20000);
    for (uint32_t i = 0; i < 20; ++i) {
        const auto response = CallThrough(m_transport, Request(peer::kEcho, 0xC0FFEE + i));
        ASSERT_EQ(response.rc, 0);
        EXPECT_EQ(response.Header()->mid, peer::kEcho);
        EXPECT_EQ(response.U32At(24), 0xC0FFEEu + i);
    }
}

TEST_F(ChannelTest, PeerKilledMidCallFailsThePendingCallAndFreesTheName) {
    NkHosSetTransportTimeouts(&m_transport, NK_TIMEOUT_INFINITE, NK_TIMEOUT_INFINITE);
    std::thread killer([this] {
        if (m_peer->WaitForLine("hanging", 20s)) {
            m_peer->Kill();
        }
    });
    EXPECT_EQ(CallThrough(m_transport, Request(peer::kHang)).rc, NK_ECLOSED);
    killer.join();
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect(kServer, "echo", NK_TIMEOUT_INFINITE, &handle, &riid), NK_ENOTFOUND);
    EXPECT_EQ(CallThrough(m_transport, Request(peer::kEcho)).rc, NK_ECLOSED);
}

TEST(ChannelConnectTest, ConnectToAnAbsentServerAnswersNotFoundAtOnce) {
    testing::ScopedRuntimeDirectory directory;
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect("nobody-here", "echo", NK_TIMEOUT_INFINITE, &handle, &riid), NK_ENOTFOUND);
    EXPECT_EQ(handle, NK_INVALID_HANDLE);
    EXPECT_EQ(KnCmConnect("bad/name", "echo", 10, &handle, &riid), NK_EINVAL);
}

}  // namespace
}  // namespace hos::platform
