// Connect, call, receive and reply between this process and a peer server process.
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
using testing::PeerProcess;
using testing::ScopedRuntimeDirectory;
using testing::TestRequest;
using testing::U32Bytes;
namespace peer = test_peer;

constexpr const char* kServer = "echo-peer";

class ChannelTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_peer = PeerProcess::StartServer(kServer);
        ASSERT_NE(m_peer, nullptr) << "the test peer did not come up";
        ASSERT_EQ(KnCmConnect(kServer, peer::kEchoEndpointFull, 5000, &m_handle, &m_riid), 0);
        NkHosTransport_Init(&m_transport, m_handle, 0, 0);
        NkHosSetTransportTimeouts(&m_transport, NK_TIMEOUT_INFINITE, 20000);
    }
    void TearDown() override {
        if (m_handle != NK_INVALID_HANDLE) {
            KnHandleClose(m_handle);
        }
    }

    ScopedRuntimeDirectory m_directory;
    std::unique_ptr<PeerProcess> m_peer;
    unsigned int m_handle = NK_INVALID_HANDLE;
    unsigned int m_riid = NK_INVALID_RIID;
    NkHosTransport m_transport{};
};

TEST_F(ChannelTest, CallReturnsTheServersResponseWithFieldsAndArena) {
    EXPECT_EQ(m_riid, peer::kEchoRiid);
    TestRequest request;
    request.iid = static_cast<uint16_t>(m_riid);
    request.mid = peer::kEcho;
    request.fields = {1, 2, 3, 4, 5, 6, 7, 8};
    request.arena = {'h', 'e', 'l', 'l', 'o'};
    const auto response = CallThrough(m_transport, request);
    ASSERT_EQ(response.rc, 0);
    EXPECT_EQ(response.Header()->iid, m_riid);
    EXPECT_EQ(response.Header()->mid, peer::kEcho);
    EXPECT_EQ(nk_message_size(response.Header()), 32u);
    EXPECT_EQ(std::vector<unsigned char>(response.message.begin() + 24, response.message.begin() + 32),
              request.fields);
    EXPECT_EQ(response.arena, request.arena);
}

TEST_F(ChannelTest, ManyCallsInARowEachGetTheirOwnAnswer) {
    for (uint32_t i = 0; i < 50; ++i) {
        TestRequest request;
        request.iid = static_cast<uint16_t>(m_riid);
        request.fields = U32Bytes(i);
        const auto response = CallThrough(m_transport, request);
        ASSERT_EQ(response.rc, 0);
        ASSERT_EQ(response.U32At(24), i);
    }
}

TEST_F(ChannelTest, HandshakeResolvesEveryNameOfAnEndpoint) {
    for (const char* name : {"echo", "echo.echo", "hl.test.Echo", "hl.test.Echo.echo"}) {
        unsigned int handle = NK_INVALID_HANDLE;
        unsigned int riid = NK_INVALID_RIID;
        ASSERT_EQ(KnCmConnect(kServer, name, 5000, &handle, &riid), 0) << name;
        EXPECT_EQ(riid, peer::kEchoRiid) << name;
        EXPECT_EQ(KnHandleClose(handle), 0);
    }
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    ASSERT_EQ(KnCmConnect(kServer, "waylandClient", 5000, &handle, &riid), 0);
    EXPECT_EQ(riid, 0u);
    KnHandleClose(handle);
}

TEST_F(ChannelTest, ConnectToAnUnofferedNameFailsWithAnotherCodeThanNotFound) {
    unsigned int handle = 77;
    unsigned int riid = 88;
    EXPECT_EQ(KnCmConnect(kServer, "hl.test.Nothing", 5000, &handle, &riid), NK_ENOENDPOINT);
    EXPECT_EQ(handle, 77u);
    EXPECT_EQ(riid, 88u);
}

TEST_F(ChannelTest, ServiceLocatorConnectAndGetRiidResolveOnAnOpenChannel) {
    const unsigned int handle = ServiceLocatorConnect(kServer);
    ASSERT_NE(handle, NK_INVALID_HANDLE);
    EXPECT_EQ(ServiceLocatorGetRiid(handle, "echo"), peer::kEchoRiid);
    EXPECT_EQ(ServiceLocatorGetRiid(handle, "no.such"), NK_INVALID_RIID);
    EXPECT_EQ(KnHandleClose(handle), 0);
    EXPECT_EQ(ServiceLocatorConnect("not-there"), NK_INVALID_HANDLE);
}

TEST_F(ChannelTest, ServerFailureComesBackAsTheFailureWordWithSuccess) {
    TestRequest request;
    request.iid = static_cast<uint16_t>(m_riid);
    request.mid = peer::kFail;
    const auto response = CallThrough(m_transport, request);
    ASSERT_EQ(response.rc, 0);
    EXPECT_EQ(response.Header()->sizeFlags, NK_SERVER_FAILURE_WORD);
}

TEST_F(ChannelTest, ResponseWithAnotherMidFailsTheCall) {
    TestRequest request;
    request.iid = static_cast<uint16_t>(m_riid);
    request.mid = peer::kWrongMid;
    EXPECT_EQ(CallThrough(m_transport, request).rc, NK_EMISMATCH);
    // The channel stays usable after a mismatch.
    request.mid = peer::kEcho;
    EXPECT_EQ(CallThrough(m_transport, request).rc, 0);
}

TEST_F(ChannelTest, ResponseWithAnotherIidFailsUnlessTheRequestIidIsAny) {
    TestRequest request;
    request.iid = static_cast<uint16_t>(m_riid);
    request.mid = peer::kWrongIid;
    EXPECT_EQ(CallThrough(m_transport, request).rc, NK_EMISMATCH);
    request.iid = NK_IID_ANY;
    // The peer answers with iid 0xffff + 1, which wraps to 0: not compared for an iid of any.
    const auto response = CallThrough(m_transport, request);
    ASSERT_EQ(response.rc, 0);
    EXPECT_EQ(response.Header()->iid, 0);
}

TEST_F(ChannelTest, ResponseLargerThanTheRoomIsRefused) {
    TestRequest request;
    request.iid = static_cast<uint16_t>(m_riid);
    request.fields.assign(40, 0xab);
    request.responseRoom = 32;
    EXPECT_EQ(CallThrough(m_transport, request).rc, NK_ETOOBIG);
    request.responseRoom = 64;
    request.arena.assign(100, 1);
    request.responseArenaRoom = 50;
    EXPECT_EQ(CallThrough(m_transport, request).rc, NK_ETOOBIG);
}

TEST_F(ChannelTest, CallThatRunsOutOfTimeReturnsMinusElevenAndLaterCallsGetTheirOwnAnswer) {
    NkHosSetTransportTimeouts(&m_transport, NK_TIMEOUT_INFINITE, 100);
    TestRequest slow;
    slow.iid = static_cast<uint16_t>(m_riid);
    slow.mid = peer::kSlowEcho;
    slow.fields = U32Bytes(600);
    EXPECT_EQ(CallThrough(m_transport, slow).rc, NK_TRANSPORT_TIMEOUT);

    NkHosSetTransportTimeouts(&m_transport, NK_TIMEOUT_INFINITE, 20000);
    TestRequest next;
    next.iid = static_cast<uint16_t>(m_riid);
    next.mid = peer::kEcho;
    next.fields = U32Bytes(0xC0FFEE);
    const auto response = CallThrough(m_transport, next);
    ASSERT_EQ(response.rc, 0);
    EXPECT_EQ(response.Header()->mid, peer::kEcho);
    EXPECT_EQ(response.U32At(24), 0xC0FFEEu);
}

TEST_F(ChannelTest, PeerKilledMidCallFailsThePendingCallPromptly) {
    NkHosSetTransportTimeouts(&m_transport, NK_TIMEOUT_INFINITE, NK_TIMEOUT_INFINITE);
    std::thread killer([this] {
        if (m_peer->WaitForLine("hanging", 20s)) {
            m_peer->Kill();
        }
    });
    TestRequest request;
    request.iid = static_cast<uint16_t>(m_riid);
    request.mid = peer::kHang;
    EXPECT_EQ(CallThrough(m_transport, request).rc, NK_ECLOSED);
    killer.join();
    // The dead server's name is free again: a connect answers not-found at once.
    m_peer->Wait(10s);
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect(kServer, "echo", NK_TIMEOUT_INFINITE, &handle, &riid), NK_ENOTFOUND);
}

TEST_F(ChannelTest, CallOnAChannelWhoseServerQuitFailsWithClosed) {
    TestRequest request;
    request.iid = static_cast<uint16_t>(m_riid);
    request.mid = peer::kQuit;
    EXPECT_EQ(CallThrough(m_transport, request).rc, 0);
    m_peer->Wait(10s);
    request.mid = peer::kEcho;
    EXPECT_EQ(CallThrough(m_transport, request).rc, NK_ECLOSED);
}

TEST(ChannelConnectTest, ConnectToAnAbsentServerAnswersNotFoundAtOnce) {
    ScopedRuntimeDirectory directory;
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect("nobody-here", "echo", NK_TIMEOUT_INFINITE, &handle, &riid), NK_ENOTFOUND);
    EXPECT_EQ(handle, NK_INVALID_HANDLE);
    EXPECT_EQ(KnCmConnect("bad/name", "echo", 10, &handle, &riid), NK_EINVAL);
}

TEST(ChannelConnectTest, CallOnAnUnknownHandleFailsWithBadHandle) {
    NkHosTransport transport;
    NkHosTransport_Init(&transport, 0x123456);
    TestRequest request;
    EXPECT_EQ(CallThrough(transport, request).rc, NK_EBADHANDLE);
    EXPECT_EQ(KnHandleClose(0x123456), NK_EBADHANDLE);
}

}  // namespace
}  // namespace hos::platform
