// Server channels in this process: receive timeouts, names, and who may connect.
#include <gtest/gtest.h>

#include <grp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

#include <diagnostics/log_capture_for_testing.h>
#include <platform/platform.h>

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

TEST_F(ServerChannelTest, ProcessRunningAsAnotherUserIsRefusedAndOthersAreStillServed) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to run a peer as another user";
    }
    // Let the other user reach the socket, so that only the server's own check stands in the way.
    ::chmod(m_directory.Path().c_str(), 0711);
    ::chmod((m_directory.Path() + "/servers").c_str(), 0711);
    const std::string path = m_directory.ServerSocket("local");
    ::chmod(path.c_str(), 0666);
    // A handshake frame (kind 3) asking for the endpoint "svc" in its arena.
    const unsigned char resolve[27] = {1, 0, 0, 0, 24, 0, 0, 0, 3, 0, 1,   0,   3,  0,
                                       0, 0, 1, 0, 0,  0, 0, 0, 0, 0, 's', 'v', 'c'};
    const pid_t child = ::fork();
    if (child == 0) {
        // Only async-signal-safe calls here: the parent has threads.
        const gid_t nogroup = 65534;
        if (::setgroups(1, &nogroup) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0) {
            ::_exit(10);
        }
        const int fd = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
        if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
            ::_exit(11);
        }
        ::send(fd, resolve, sizeof(resolve), MSG_NOSIGNAL);
        unsigned char answer[64];
        const ssize_t got = ::recv(fd, answer, sizeof(answer), 0);
        int result = 0;
        if (got >= 24) {
            std::memcpy(&result, answer + 20, sizeof(result));
        }
        // A refusal carries NK_EACCESS and then the channel ends.
        const bool refused = got >= 24 && result == NK_EACCESS && ::recv(fd, answer, sizeof(answer), 0) <= 0;
        ::_exit(refused ? 0 : 12);
    }
    ASSERT_GT(child, 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << std::hex << status;
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect("local", "svc", 5000, &handle, &riid), 0);
    KnHandleClose(handle);
}

}  // namespace
}  // namespace hos::platform
