// Handles travelling in messages between this process and a peer, and notices on them. A wait that
// runs out or is dropped and woken is common_utils' notice tests' part.
#include <gtest/gtest.h>

#include <sys/socket.h>

#include <platform/platform.h>

#include "core/handle_table.h"
#include "peer/test_peer_protocol.h"
#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"
#include "support/test_call.h"

namespace hos::platform {
namespace {

using testing::CallThrough;
using testing::TestRequest;
namespace peer = test_peer;

constexpr unsigned int kUpdate = 0x10000;

class HandlePassingTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_peer = testing::PeerProcess::Start({HL_PLATFORM_TEST_PEER, "serve", "handle-peer"});
        ASSERT_NE(m_peer, nullptr);
        ASSERT_EQ(KnCmConnect("handle-peer", "echo", 5000, &m_channel, &m_riid), 0);
        NkHosTransport_Init(&m_transport, m_channel);
        NkHosSetTransportTimeouts(&m_transport, 0, 20000);
        ASSERT_EQ(KnNoticeCreate(&m_notice), 0);
        ASSERT_EQ(KnHandleCreatePair(&m_kept, &m_other), 0);
        ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, m_kept, KN_NOTICE_EVENT_CLOSED | kUpdate, 8), 0);
    }
    void TearDown() override {
        KnNoticeRelease(m_notice);
        KnHandleClose(m_channel);
        KnHandleClose(m_kept);
        KnHandleClose(m_other);
    }

    testing::TestResponse Call(uint16_t mid, uint32_t field = 0, std::vector<unsigned int> handles = {}) {
        TestRequest request;
        request.iid = static_cast<uint16_t>(m_riid);
        request.mid = mid;
        request.fields = testing::U32Bytes(field);
        request.handles = std::move(handles);
        return CallThrough(m_transport, request);
    }

    EventDesc WaitOne() {
        EventDesc event{};
        unsigned long count = 0;
        EXPECT_EQ(KnNoticeGetEvent(m_notice, 10000, 1, &event, &count), 0);
        return event;
    }

    testing::ScopedRuntimeDirectory m_directory;
    std::unique_ptr<testing::PeerProcess> m_peer;
    unsigned int m_channel = NK_INVALID_HANDLE;
    unsigned int m_riid = NK_INVALID_RIID;
    NkHosTransport m_transport{};
    SNotice* m_notice = nullptr;
    unsigned int m_kept = NK_INVALID_HANDLE;  // watched by m_notice as event 8
    unsigned int m_other = NK_INVALID_HANDLE;
};

TEST_F(HandlePassingTest, HandleInAResponseCarriesTheServersEventsAndItsClosing) {
    const auto given = Call(peer::kGiveHandle);
    ASSERT_EQ(given.rc, 0);
    EXPECT_EQ(given.Header()->sizeFlags, 0x800028u);
    const unsigned int handle = given.HandleAt(0);
    ASSERT_NE(handle, NK_INVALID_HANDLE);
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, handle, KN_NOTICE_EVENT_CLOSED | kUpdate, 3), 0);

    const auto raised = Call(peer::kRaise, kUpdate | 0x4);
    ASSERT_EQ(raised.rc, 0);
    EXPECT_EQ(raised.U32At(24), 0u);
    EventDesc event = WaitOne();
    EXPECT_EQ(event.mask, kUpdate);  // the bit outside the mask is not reported
    EXPECT_EQ(event.handle, handle);
    EXPECT_EQ(event.eventId, 3u);

    ASSERT_EQ(Call(peer::kCloseKept).rc, 0);
    EXPECT_EQ(WaitOne().mask, KN_NOTICE_EVENT_CLOSED);
    KnHandleClose(handle);
}

TEST_F(HandlePassingTest, HandleSentInARequestIsUsableByTheServer) {
    EXPECT_EQ(Call(peer::kEcho, 0, {0x00ABCDEF}).rc, NK_EBADHANDLE);
    const auto response = Call(peer::kUseHandle, 0, {m_other});
    // Handed over: our copy goes, so that the server's close is the last one.
    KnHandleClose(m_other);
    m_other = NK_INVALID_HANDLE;
    ASSERT_EQ(response.rc, 0);
    EXPECT_EQ(response.U32At(24), 0u);
    EventDesc event = WaitOne();
    EXPECT_EQ(event.mask & kUpdate, kUpdate);
    EXPECT_EQ(event.eventId, 8u);
    if ((event.mask & KN_NOTICE_EVENT_CLOSED) == 0) {
        EXPECT_EQ(WaitOne().mask & KN_NOTICE_EVENT_CLOSED, KN_NOTICE_EVENT_CLOSED);
    }
}

TEST_F(HandlePassingTest, ClosedBitIsThePlatformsOwnAndAPeerCannotRaiseIt) {
    // Through the call, in this process and in the server's.
    EXPECT_EQ(KnNoticeSetObjectEvent(m_other, KN_NOTICE_EVENT_CLOSED | kUpdate), NK_EINVAL);
    const auto given = Call(peer::kGiveHandle);
    ASSERT_EQ(given.rc, 0);
    const unsigned int handle = given.HandleAt(0);
    ASSERT_EQ(KnNoticeSubscribeToObject(m_notice, handle, KN_NOTICE_EVENT_CLOSED | kUpdate, 3), 0);
    EXPECT_EQ(Call(peer::kRaise, KN_NOTICE_EVENT_CLOSED | kUpdate).U32At(24),
              static_cast<uint32_t>(NK_EINVAL));
    // As a raw Event frame on the wire: the update arrives, the claimed closing does not.
    const unsigned char frame[24] = {0xff, 0xff, 0, 0, 24, 0, 0, 0, 6, 0, 1, 0,
                                     0,    0,    0, 0, 0,  0, 0, 0, 1, 0, 1, 0};
    ASSERT_EQ(::send(HandleTable::Instance().Find(m_other)->Fd(), frame, sizeof(frame), MSG_NOSIGNAL), 24);
    EXPECT_EQ(WaitOne().mask, kUpdate);
    EventDesc event{};
    unsigned long count = 0;
    EXPECT_EQ(KnNoticeGetEvent(m_notice, 100, 1, &event, &count), NK_ETIMEOUT);
    KnHandleClose(m_other);
    m_other = NK_INVALID_HANDLE;
    EXPECT_EQ(WaitOne().mask, KN_NOTICE_EVENT_CLOSED);
    KnHandleClose(handle);
}

}  // namespace
}  // namespace hos::platform
