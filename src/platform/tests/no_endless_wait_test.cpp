// No call waits for ever on an answer the platform can give: a refusal of a frame the server could
// not read, a server that closes its channel, and a client that floods without reading its answers
// (it must not hold up another client's call). Every peer is a process of its own.
#include <gtest/gtest.h>

#include <chrono>
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
namespace peer = test_peer;

struct Client {
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    NkHosTransport transport{};

    // Connects; calls wait without a time limit unless `callTimeoutMs` says otherwise.
    int Connect(const char* server, unsigned int callTimeoutMs = NK_TIMEOUT_INFINITE) {
        const int rc = KnCmConnect(server, "echo", 5000, &handle, &riid);
        NkHosTransport_Init(&transport, handle);
        NkHosSetTransportTimeouts(&transport, NK_TIMEOUT_INFINITE, callTimeoutMs);
        return rc;
    }
    testing::TestResponse Call(uint16_t mid, uint32_t field = 0) {
        TestRequest request;
        request.iid = static_cast<uint16_t>(riid);
        request.mid = mid;
        request.fields = testing::U32Bytes(field);
        return CallThrough(transport, request);
    }
    ~Client() { KnHandleClose(handle); }
};

TEST(NoEndlessWaitTest, RefusalWithoutASequenceFailsThePendingCallAtOnce) {
    testing::ScopedRuntimeDirectory directory;
    const auto server = testing::PeerProcess::Start({HL_PLATFORM_TEST_PEER, "serve-refusing", "refuser"});
    ASSERT_NE(server, nullptr);
    Client client;
    ASSERT_EQ(client.Connect("refuser"), 0);
    // Without a time limit: before, the refusal was dropped as stale and the call never returned.
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(client.Call(peer::kEcho).rc, NK_EBADMSG);
    }
}

TEST(NoEndlessWaitTest, ServerThatClosesItsChannelFailsThePendingCallAtOnce) {
    testing::ScopedRuntimeDirectory directory;
    const auto server = testing::PeerProcess::Start({HL_PLATFORM_TEST_PEER, "serve", "closer"});
    ASSERT_NE(server, nullptr);
    Client waiting;
    Client closing;
    ASSERT_EQ(waiting.Connect("closer"), 0);
    ASSERT_EQ(closing.Connect("closer"), 0);
    // The server process lives on; only its channel goes, taking every client's call with it.
    EXPECT_EQ(closing.Call(peer::kCloseServer).rc, NK_ECLOSED);
    EXPECT_TRUE(server->WaitForLine("closed", 10s));
    EXPECT_EQ(waiting.Call(peer::kEcho).rc, NK_ECLOSED);
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect("closer", "echo", 5000, &handle, &riid), NK_ENOTFOUND);
}

TEST(NoEndlessWaitTest, ClientThatFloodsWithoutReadingDoesNotHoldUpAnotherClient) {
    testing::ScopedRuntimeDirectory directory;
    const auto server = testing::PeerProcess::Start({HL_PLATFORM_TEST_PEER, "serve", "busy"});
    ASSERT_NE(server, nullptr);
    const auto flooder = testing::PeerProcess::Start({HL_PLATFORM_TEST_PEER, "flood", "busy"});
    ASSERT_NE(flooder, nullptr);
    // From here the server has answers for the flooder that the flooder does not take.
    ASSERT_TRUE(flooder->WaitForLine("flooding", 20s));
    // A server that waited for room for the flooder's answers would keep these calls waiting for
    // seconds; served in turn, each one waits for at most one of the flooder's requests.
    Client client;
    ASSERT_EQ(client.Connect("busy", 2000), 0);
    for (uint32_t i = 0; i < 50; ++i) {
        const auto response = client.Call(peer::kEcho, i);
        ASSERT_EQ(response.rc, 0) << "call " << i;
        EXPECT_EQ(response.U32At(24), i);
    }
}

}  // namespace
}  // namespace hos::platform
