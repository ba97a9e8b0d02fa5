// Server channels in this process: receive timeouts, names, who may connect (a peer whose
// credentials name another user than the server expects is refused), and the turns of the receiver
// and the pump at the clients' sockets.
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include <diagnostics/log_capture_for_testing.h>
#include <platform/platform.h>

#include "ipc/client_turns.h"
#include "ipc/packet_io.h"
#include "ipc/server_channel.h"
#include "support/scoped_runtime_directory.h"
#include "task/task.h"

namespace hos::platform {
namespace {

constexpr unsigned int kRiid = 3;

class ServerChannelTest : public ::testing::Test {
protected:
    void SetUp() override {
        static const HosEndpointDesc endpoints[] = {{kRiid, "svc.svc", "svc", "hl.test.Svc"}};
        const HosComponentTree tree{"hl.test.Local", endpoints, 1, nullptr, 0};
        ASSERT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), &tree), 0);
        m_server = ServiceLocatorRegister("local", 0, 0, &m_id);
        ASSERT_NE(m_server, NK_INVALID_HANDLE);
        NkHosTransport_Init(&m_transport, m_server, 0, 0);
    }
    void TearDown() override {
        KnHandleClose(m_server);
        Task::Self().ResetForTesting();
    }

    testing::ScopedRuntimeDirectory m_directory;
    unsigned int m_server = NK_INVALID_HANDLE;
    unsigned int m_id = 0;
    NkHosTransport m_transport{};
};

TEST_F(ServerChannelTest, ReceiveWithNothingQueuedReturnsMinusElevenAfterItsTimeout) {
    for (const unsigned int timeoutMs : {50u, 0u}) {
        NkHosSetTransportTimeouts(&m_transport, timeoutMs, NK_TIMEOUT_INFINITE);
        std::vector<unsigned char> request(64, 0);
        auto* in = reinterpret_cast<nk_message*>(request.data());
        in->sizeFlags = nk_size_word(64, 0);
        EXPECT_EQ(m_transport.ops->receive(&m_transport, in, nullptr), NK_TRANSPORT_TIMEOUT) << timeoutMs;
    }
}

TEST_F(ServerChannelTest, NameHeldByALiveServerMalformedOrTooLongIsRefused) {
    hos::logger::LogCaptureForTesting capture;
    unsigned int id = 0;
    EXPECT_EQ(ServiceLocatorRegister("local", 0, 0, &id), NK_INVALID_HANDLE);
    EXPECT_EQ(ServiceLocatorRegister("bad name", 0, 0, &id), NK_INVALID_HANDLE);
    EXPECT_EQ(ServiceLocatorRegister(std::string(150, 'n').c_str(), 0, 0, &id), NK_INVALID_HANDLE);
    EXPECT_TRUE(capture.Contains("longer than the limit"));
}

TEST(PeerCredentialsTest, PeerOfAnotherUidIsRefusedWithALogLine) {
    testing::ScopedRuntimeDirectory directory;
    hos::logger::LogCaptureForTesting capture;
    int rc = 0;
    auto server = ServerChannel::OpenForTesting("guarded", ::geteuid() + 1, rc);
    ASSERT_NE(server, nullptr);
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect("guarded", "svc", 5000, &handle, &riid), NK_EACCESS);
    EXPECT_EQ(handle, NK_INVALID_HANDLE);
    server->Shutdown();
    EXPECT_TRUE(capture.Contains("refusing a peer of uid"));
}

// Takes the receiver's turn as Receive does, with a copy of the clients of its own.
int Enter(ClientTurns& turns, const Deadline& deadline) {
    ClientTurns::ClientList clients;
    uint64_t generation = ~uint64_t{0};
    return turns.EnterReceive(deadline, clients, generation);
}

TEST(ClientTurnsTest, AReceiverHoldsOnlyOnceThePumpHasLetGoAndThePumpOnlyAfterTheIdleTime) {
    int rc = 0;
    const auto turns = ClientTurns::Create("turns", ConnectionLimits::ForThisProcess(), rc);
    ASSERT_NE(turns, nullptr);
    ASSERT_EQ(turns->PumpTurn(), ClientTurns::PumpRole::Read);  // a channel starts with the pump reading
    std::atomic<bool> holding{false};
    auto receiver = std::async(std::launch::async, [&] {
        const int entered = Enter(*turns, Deadline::Never());
        holding = entered == NK_EOK;
        return entered;
    });
    // The receiver rings the pump's bell and may not read before the pump's next turn.
    ASSERT_EQ(WaitReadable(turns->PumpBell(), Deadline::FromTimeoutMs(5000)), 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(holding);
    EXPECT_EQ(turns->PumpTurn(), ClientTurns::PumpRole::Wait);
    ASSERT_EQ(receiver.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    EXPECT_EQ(receiver.get(), NK_EOK);
    EXPECT_EQ(Enter(*turns, Deadline::FromTimeoutMs(20)),
              NK_TRANSPORT_TIMEOUT);  // one receiver at a time

    turns->LeaveReceive();
    EXPECT_EQ(turns->PumpTurn(), ClientTurns::PumpRole::Wait);
    ASSERT_EQ(WaitReadable(turns->IdleTimer(), Deadline::FromTimeoutMs(5000)), 1);
    turns->IdleTimerFired();
    EXPECT_EQ(turns->PumpTurn(), ClientTurns::PumpRole::Read);
}

TEST(ClientTurnsTest, StopEndsAReceiverWaitingForThePumpAndThePump) {
    int rc = 0;
    const auto turns = ClientTurns::Create("turns", ConnectionLimits::ForThisProcess(), rc);
    ASSERT_NE(turns, nullptr);
    auto receiver = std::async(std::launch::async, [&] { return Enter(*turns, Deadline::Never()); });
    ASSERT_EQ(WaitReadable(turns->PumpBell(), Deadline::FromTimeoutMs(5000)), 1);
    EXPECT_TRUE(turns->Stop());
    ASSERT_EQ(receiver.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    EXPECT_EQ(receiver.get(), NK_ECLOSED);
    EXPECT_EQ(turns->PumpTurn(), ClientTurns::PumpRole::Stop);
    EXPECT_EQ(Enter(*turns, Deadline::Never()), NK_ECLOSED);
    EXPECT_FALSE(turns->Stop());
}

}  // namespace
}  // namespace hos::platform
