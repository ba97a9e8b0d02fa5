// Server channels in this process: receive, reply, timeouts, names, and who may connect.
#include <gtest/gtest.h>

#include <grp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <future>
#include <thread>

#include <diagnostics/log_capture_for_testing.h>
#include <platform/platform.h>

#include "ipc/server_channel.h"
#include "support/raw_socket.h"
#include "support/scoped_runtime_directory.h"
#include "support/test_call.h"
#include "task/task.h"

namespace hos::platform {
namespace {

using namespace std::chrono_literals;
using testing::CallThrough;
using testing::ScopedRuntimeDirectory;
using testing::TestRequest;
using testing::U32Bytes;

constexpr unsigned int kRiid = 3;

void SetOneEndpointTree() {
    static const HosEndpointDesc endpoints[] = {{kRiid, "svc.svc", "svc", "hl.test.Svc"}};
    const HosComponentTree tree{"hl.test.Local", endpoints, 1, nullptr, 0};
    ASSERT_EQ(HosTaskSetComponentTree(HosTaskGetSelf(), &tree), 0);
}

class ServerChannelTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetOneEndpointTree();
        m_server = ServiceLocatorRegister("local", 0, 0, &m_id);
        ASSERT_NE(m_server, NK_INVALID_HANDLE);
        NkHosTransport_Init(&m_transport, m_server, 0, 0);
    }
    void TearDown() override {
        if (m_server != NK_INVALID_HANDLE) {
            KnHandleClose(m_server);
        }
        Task::Self().ResetForTesting();
    }

    // Receives one request, answers it with its own bytes plus `extra` added to the u32 at 24.
    int ServeOne(uint32_t extra, unsigned int timeoutMs) {
        NkHosSetTransportTimeouts(&m_transport, timeoutMs, NK_TIMEOUT_INFINITE);
        std::vector<unsigned char> request(64, 0);
        auto* in = reinterpret_cast<nk_message*>(request.data());
        in->sizeFlags = nk_size_word(64, 0);
        nk_arena empty{nullptr, nullptr, nullptr};
        const int rc = m_transport.ops->receive(&m_transport, in, &empty);
        if (rc != 0) {
            return rc;
        }
        uint32_t value = 0;
        std::memcpy(&value, request.data() + 24, sizeof(value));
        value += extra;
        std::memcpy(request.data() + 24, &value, sizeof(value));
        return m_transport.ops->reply(&m_transport, in, &empty);
    }

    ScopedRuntimeDirectory m_directory;
    unsigned int m_server = NK_INVALID_HANDLE;
    unsigned int m_id = 0;
    NkHosTransport m_transport{};
};

TEST_F(ServerChannelTest, ReceiveWithNothingQueuedReturnsMinusElevenAfterItsTimeout) {
    EXPECT_EQ(ServeOne(0, 50), NK_TRANSPORT_TIMEOUT);
    EXPECT_EQ(ServeOne(0, 0), NK_TRANSPORT_TIMEOUT);
}

TEST_F(ServerChannelTest, ReceiveAndReplyServeEachClientItsOwnAnswer) {
    auto client = [](uint32_t value) {
        unsigned int handle = NK_INVALID_HANDLE;
        unsigned int riid = NK_INVALID_RIID;
        if (KnCmConnect("local", "svc", 5000, &handle, &riid) != 0 || riid != kRiid) {
            return uint32_t{0};
        }
        NkHosTransport transport;
        NkHosTransport_Init(&transport, handle);
        NkHosSetTransportTimeouts(&transport, 0, 20000);
        TestRequest request;
        request.iid = kRiid;
        request.fields = U32Bytes(value);
        const auto response = CallThrough(transport, request);
        KnHandleClose(handle);
        return response.rc == 0 ? response.U32At(24) : uint32_t{0};
    };
    auto first = std::async(std::launch::async, client, 100);
    auto second = std::async(std::launch::async, client, 200);
    EXPECT_EQ(ServeOne(1, 20000), 0);
    EXPECT_EQ(ServeOne(1, 20000), 0);
    EXPECT_EQ(first.get(), 101u);
    EXPECT_EQ(second.get(), 201u);
}

TEST_F(ServerChannelTest, RequestLargerThanTheRoomIsRefusedAndTheServerGoesOn) {
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    ASSERT_EQ(KnCmConnect("local", "svc", 5000, &handle, &riid), 0);
    NkHosTransport transport;
    NkHosTransport_Init(&transport, handle);
    auto tooBig = std::async(std::launch::async, [&] {
        TestRequest request;
        request.iid = kRiid;
        request.fields.assign(100, 7);
        return CallThrough(transport, request).rc;
    });
    hos::logger::LogCaptureForTesting capture;
    // The oversized request is skipped inside receive, which then times out.
    EXPECT_EQ(ServeOne(0, 300), NK_TRANSPORT_TIMEOUT);
    EXPECT_EQ(tooBig.get(), NK_ETOOBIG);
    EXPECT_TRUE(capture.Contains("refused a frame"));
    auto fits = std::async(std::launch::async, [&] {
        TestRequest request;
        request.iid = kRiid;
        request.fields = U32Bytes(5);
        return CallThrough(transport, request).U32At(24);
    });
    EXPECT_EQ(ServeOne(2, 20000), 0);
    EXPECT_EQ(fits.get(), 7u);
    KnHandleClose(handle);
}

TEST_F(ServerChannelTest, ReplyToAClientThatHasGoneReturnsClosed) {
    {
        testing::RawSocket raw(m_directory.ServerSocket("local"));
        ASSERT_TRUE(raw.IsConnected());
        ASSERT_TRUE(raw.Send(testing::MakePacket(1, nk_size_word(28, 0), 0, 9, U32Bytes(1))));
        std::vector<unsigned char> request(64, 0);
        auto* in = reinterpret_cast<nk_message*>(request.data());
        in->sizeFlags = nk_size_word(64, 0);
        NkHosSetTransportTimeouts(&m_transport, 20000, 1000);
        ASSERT_EQ(m_transport.ops->receive(&m_transport, in, nullptr), 0);
    }
    std::vector<unsigned char> response(24, 0);
    auto* out = reinterpret_cast<nk_message*>(response.data());
    out->sizeFlags = nk_size_word(24, 0);
    // The pump may not have seen the hang-up yet: then the send itself finds the peer gone.
    EXPECT_EQ(m_transport.ops->reply(&m_transport, out, nullptr), NK_ECLOSED);
}

TEST_F(ServerChannelTest, ClosingTheServerWakesAReceiverAndRemovesTheName) {
    auto receiver = std::async(std::launch::async, [this] {
        std::vector<unsigned char> request(64, 0);
        auto* in = reinterpret_cast<nk_message*>(request.data());
        in->sizeFlags = nk_size_word(64, 0);
        NkHosTransport transport;
        NkHosTransport_Init(&transport, m_server);
        return transport.ops->receive(&transport, in, nullptr);
    });
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(KnHandleClose(m_server), 0);
    m_server = NK_INVALID_HANDLE;
    ASSERT_EQ(receiver.wait_for(10s), std::future_status::ready);
    const int rc = receiver.get();
    EXPECT_TRUE(rc == NK_ECLOSED || rc == NK_EBADHANDLE) << std::hex << rc;
    EXPECT_FALSE(std::filesystem::exists(m_directory.ServerSocket("local")));
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect("local", "svc", 1000, &handle, &riid), NK_ENOTFOUND);
}

TEST_F(ServerChannelTest, UnregisterEndsTheRecordButTheNameStaysReachable) {
    EXPECT_EQ(ServiceLocatorUnregister(m_id), 0);
    EXPECT_EQ(ServiceLocatorUnregister(m_id), NK_ENOTFOUND);
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect("local", "svc", 5000, &handle, &riid), 0);
    KnHandleClose(handle);
}

TEST_F(ServerChannelTest, RegisteringANameThatALiveServerHoldsFails) {
    unsigned int id = 0;
    EXPECT_EQ(ServiceLocatorRegister("local", 0, 0, &id), NK_INVALID_HANDLE);
    EXPECT_EQ(ServiceLocatorRegister("bad name", 0, 0, &id), NK_INVALID_HANDLE);
}

TEST(ServerChannelNameTest, NameWhoseSocketPathExceedsTheLimitIsRefusedWithALogLine) {
    ScopedRuntimeDirectory directory;
    hos::logger::LogCaptureForTesting capture;
    const std::string name(150, 'n');
    unsigned int id = 0;
    EXPECT_EQ(ServiceLocatorRegister(name.c_str(), 0, 0, &id), NK_INVALID_HANDLE);
    EXPECT_TRUE(capture.Contains("longer than the limit"));
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect(name.c_str(), "svc", 10, &handle, &riid), NK_EINVAL);
}

TEST(ServerChannelNameTest, StaleSocketOfADeadServerIsTakenOver) {
    ScopedRuntimeDirectory directory;
    ASSERT_TRUE(std::filesystem::create_directories(directory.Path() + "/servers"));
    const std::string path = directory.ServerSocket("stale");
    {
        // A bound socket whose owner has gone leaves its file behind.
        const int fd = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
        ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
        ::close(fd);
    }
    ASSERT_TRUE(std::filesystem::exists(path));
    unsigned int id = 0;
    const unsigned int handle = ServiceLocatorRegister("stale", 0, 0, &id);
    EXPECT_NE(handle, NK_INVALID_HANDLE);
    KnHandleClose(handle);
}

TEST(ServerChannelNameTest, RuntimeDirectoryIsCreatedPrivate) {
    ScopedRuntimeDirectory directory;
    const std::string nested = directory.Path() + "/nested";
    ::setenv("HL_RUNTIME_DIR", nested.c_str(), 1);
    unsigned int id = 0;
    const unsigned int handle = ServiceLocatorRegister("private", 0, 0, &id);
    ASSERT_NE(handle, NK_INVALID_HANDLE);
    struct stat info {};
    ASSERT_EQ(::stat(nested.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    ASSERT_EQ(::stat((nested + "/servers/private").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0077, 0u);
    KnHandleClose(handle);
}

TEST(PeerCredentialsTest, PeerOfAnotherUidIsRefusedWithALogLine) {
    ScopedRuntimeDirectory directory;
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

TEST(PeerCredentialsTest, ProcessRunningAsAnotherUserIsRefusedAndOthersAreStillServed) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to run a peer as another user";
    }
    ScopedRuntimeDirectory directory;
    SetOneEndpointTree();
    unsigned int id = 0;
    const unsigned int server = ServiceLocatorRegister("guarded", 0, 0, &id);
    ASSERT_NE(server, NK_INVALID_HANDLE);
    // Let the other user reach the socket, so that only the server's own check stands in the way.
    ::chmod(directory.Path().c_str(), 0711);
    ::chmod((directory.Path() + "/servers").c_str(), 0711);
    const std::string path = directory.ServerSocket("guarded");
    ::chmod(path.c_str(), 0666);
    const std::vector<unsigned char> resolve =
        testing::MakePacket(3, nk_size_word(24, 0), 3, 1, {'s', 'v', 'c'});

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
        ::send(fd, resolve.data(), resolve.size(), MSG_NOSIGNAL);
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
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);

    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    EXPECT_EQ(KnCmConnect("guarded", "svc", 5000, &handle, &riid), 0);
    KnHandleClose(handle);
    KnHandleClose(server);
    Task::Self().ResetForTesting();
}

}  // namespace
}  // namespace hos::platform
