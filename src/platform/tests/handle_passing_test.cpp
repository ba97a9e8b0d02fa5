// Handles travelling in messages between this process and a peer, and notices across processes.
#include <gtest/gtest.h>

#include <platform/platform.h>

#include "peer/test_peer_protocol.h"
#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"
#include "support/test_call.h"

namespace hos::platform {
namespace {

using testing::CallThrough;
using testing::PeerProcess;
using testing::ScopedRuntimeDirectory;
using testing::TestRequest;
using testing::U32Bytes;
namespace peer = test_peer;

constexpr unsigned int kUpdate = 0x10000;

class HandlePassingTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_peer = PeerProcess::StartServer("handle-peer");
        ASSERT_NE(m_peer, nullptr);
        ASSERT_EQ(KnCmConnect("handle-peer", "echo", 5000, &m_channel, &m_riid), 0);
        NkHosTransport_Init(&m_transport, m_channel);
        NkHosSetTransportTimeouts(&m_transport, 0, 20000);
        ASSERT_EQ(KnNoticeCreate(&m_notice), 0);
    }
    void TearDown() override {
        KnNoticeRelease(m_notice);
        KnHandleClose(m_channel);
    }

    TestRequest Request(uint16_t mid) {
        TestRequest request;
        request.iid = static_cast<uint16_t>(m_riid);
        request.mid = mid;
        return request;
    }

    int WaitOne(EventDesc& event) {
        unsigned long count = 0;
        return KnNoticeGetEvent(m_notice, 10000, 1, &event, &count);
    }

    ScopedRuntimeDirectory m_directory;
    std::unique_ptr<PeerProcess> m_peer;
    unsigned int m_channel = NK_INVALID_HANDLE;
    unsigned int m_riid = NK_INVALID_RIID;
    NkHosTransport m_transport{};
    SNotice* m_notice = nullptr;
};

TEST_F(HandlePassingTest, HandleInAResponseIsLocalAndCarriesTheServersEventsAndItsClosing) {
    auto request = Request(peer::kGiveHandle);
    request.responseRoom = 40;
    request.responseHandleRoom = 1;
    const auto given = CallThrough(m_transport, request);
    ASSERT_EQ(given.rc, 0);
    EXPECT_EQ(given.Header()->sizeFlags, 0x800028u);
    const unsigned int handle = given.HandleAt(0);
    ASSERT_NE(handle, NK_INVALID_HANDLE);
    EXPECT_LE(handle, 0xFFFFFEu);
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, handle, KN_NOTICE_EVENT_CLOSED | kUpdate, 3), 0);

    auto raise = Request(peer::kRaise);
    raise.fields = U32Bytes(kUpdate);
    const auto raised = CallThrough(m_transport, raise);
    ASSERT_EQ(raised.rc, 0);
    EXPECT_EQ(raised.U32At(24), 0u);
    EventDesc event{};
    ASSERT_EQ(WaitOne(event), 0);
    EXPECT_EQ(event.mask, kUpdate);
    EXPECT_EQ(event.handle, handle);

    ASSERT_EQ(CallThrough(m_transport, Request(peer::kCloseKept)).rc, 0);
    ASSERT_EQ(WaitOne(event), 0);
    EXPECT_EQ(event.mask & KN_NOTICE_EVENT_CLOSED, KN_NOTICE_EVENT_CLOSED);
    KnHandleClose(handle);
}

TEST_F(HandlePassingTest, HandleNeedsRoomInTheResponse) {
    auto request = Request(peer::kGiveHandle);
    request.responseRoom = 40;
    request.responseHandleRoom = 0;
    EXPECT_EQ(CallThrough(m_transport, request).rc, NK_ETOOBIG);
}

TEST_F(HandlePassingTest, HandleSentInARequestIsUsableByTheServer) {
    unsigned int kept = NK_INVALID_HANDLE;
    unsigned int sent = NK_INVALID_HANDLE;
    ASSERT_EQ(KnHandleCreatePair(&kept, &sent), 0);
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, kept, KN_NOTICE_EVENT_CLOSED | kUpdate, 8), 0);
    auto request = Request(peer::kUseHandle);
    request.handles = {sent};
    request.fields = U32Bytes(0);
    // Handed over: our copy goes, so that the server's close is the last one.
    const auto response = CallThrough(m_transport, request);
    KnHandleClose(sent);
    ASSERT_EQ(response.rc, 0);
    EXPECT_EQ(static_cast<int>(response.U32At(24)), 0);
    EventDesc event{};
    ASSERT_EQ(WaitOne(event), 0);
    EXPECT_EQ(event.mask & kUpdate, kUpdate);
    EXPECT_EQ(event.eventId, 8u);
    if ((event.mask & KN_NOTICE_EVENT_CLOSED) == 0) {
        ASSERT_EQ(WaitOne(event), 0);
        EXPECT_EQ(event.mask & KN_NOTICE_EVENT_CLOSED, KN_NOTICE_EVENT_CLOSED);
    }
    KnHandleClose(kept);
}

TEST_F(HandlePassingTest, UnknownHandleInARequestIsRefusedBeforeSending) {
    auto request = Request(peer::kEcho);
    request.handles = {0x00ABCDEF};
    EXPECT_EQ(CallThrough(m_transport, request).rc, NK_EBADHANDLE);
    EXPECT_EQ(CallThrough(m_transport, Request(peer::kEcho)).rc, 0);
}

TEST_F(HandlePassingTest, PeerDeathRaisesTheClosedEventOnItsHandle) {
    auto request = Request(peer::kGiveHandle);
    request.responseRoom = 40;
    request.responseHandleRoom = 1;
    const auto given = CallThrough(m_transport, request);
    ASSERT_EQ(given.rc, 0);
    const unsigned int handle = given.HandleAt(0);
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, handle, KN_NOTICE_EVENT_CLOSED | kUpdate, 4), 0);
    m_peer->Kill();
    EventDesc event{};
    ASSERT_EQ(WaitOne(event), 0);
    EXPECT_EQ(event.mask, KN_NOTICE_EVENT_CLOSED);
    KnHandleClose(handle);
}

}  // namespace
}  // namespace hos::platform
