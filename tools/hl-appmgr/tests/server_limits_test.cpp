// The limits every server of the hosted platform keeps, tried on the real hl-appmgr as its clients
// meet it, from a raw socket below the platform: handles attached to requests are closed once
// served, silent connections do not lock out a client that speaks, and a flood of refused frames
// logs a bounded number of lines.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <platform/platform.h>

#include "support/peer_process.h"
#include "support/raw_socket.h"
#include "support/scoped_runtime_directory.h"

namespace hos::platform {
namespace {

using namespace std::chrono_literals;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

// The real hl-appmgr, its log on the standard output that the test reads, serving until the test ends
// (its application ends with the test's end of the manager's input).
// `shellLimits` runs before it in the shell that starts it (as "ulimit -n 256").
std::unique_ptr<testing::PeerProcess> StartManager(const std::string& shellLimits = {}) {
    return testing::PeerProcess::Start(
        {"/bin/sh", "-c",
         shellLimits +
             "\nexec 2>&1; exec \"$0\" run --name waiter -- /bin/sh -c 'echo ready; exec cat >/dev/null'",
         HL_APPMGR});
}

std::size_t OpenDescriptors(pid_t pid) {
    const std::filesystem::path fds = "/proc/" + std::to_string(pid) + "/fd";
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(fds), {}));
}

// Resolves `endpoint` on `raw` and returns its riid (0xffff when refused).
uint16_t Resolve(testing::RawSocket& raw, const std::string& endpoint) {
    if (!raw.Send(testing::RawFrame(testing::kRawResolve, 0, 0, 1, {}, {endpoint.begin(), endpoint.end()}))) {
        return 0xffff;
    }
    const auto resolved = raw.Receive(10s);
    if (!resolved || testing::FrameField<uint16_t>(*resolved, 8) != testing::kRawResolved) {
        return 0xffff;
    }
    return static_cast<uint16_t>(testing::FrameField<uint32_t>(*resolved, 24));
}

// The lines of `process` that contain `text`, among those it writes within `period` from now.
std::size_t CountLines(testing::PeerProcess& process, const std::string& text,
                       std::chrono::milliseconds period) {
    std::size_t count = 0;
    const auto until = std::chrono::steady_clock::now() + period;
    for (auto left = period; left.count() > 0; left = std::chrono::duration_cast<std::chrono::milliseconds>(
                                                   until - std::chrono::steady_clock::now())) {
        const auto line = process.ReadLine(left);
        count += line && line->find(text) != std::string::npos ? 1 : 0;
    }
    return count;
}

// Pings with four descriptors attached, which no request of the manager takes: each is closed
// when its request has been served, so the manager's descriptor count stays where it was.
TEST(ServerLimitsTest, HandlesAttachedToRequestsAreClosedOnceServed) {
    testing::ScopedRuntimeDirectory directory;
    const auto manager = StartManager();
    ASSERT_NE(manager, nullptr);
    testing::RawSocket raw(directory.ServerSocket("applicationManager_id"));
    const uint16_t riid = Resolve(raw, "app_manager.applicationWatchdog");
    ASSERT_NE(riid, 0xffff);
    int pipeEnds[2];
    ASSERT_EQ(::pipe2(pipeEnds, O_CLOEXEC), 0);
    const std::vector<int> attached{pipeEnds[0], pipeEnds[1], pipeEnds[0], pipeEnds[1]};
    const std::string name = "waiter";
    std::vector<unsigned char> body(4 * 16 + 8, 0);
    const std::size_t before = OpenDescriptors(manager->Pid());
    for (uint32_t sequence = 2; sequence < 302; ++sequence) {
        ASSERT_TRUE(raw.Send(testing::RawFrame(testing::kRawRequest, riid, 0, sequence, body,
                                               {name.begin(), name.end()}, 0, nk_size_word(96, 4)),
                             attached));
        ASSERT_TRUE(raw.Receive(10s).has_value()) << "request " << sequence << " was not answered";
    }
    const std::size_t after = OpenDescriptors(manager->Pid());
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    EXPECT_LE(after, before + 2) << "300 requests with 4 descriptors each: " << before << " open before, "
                                 << after << " after";
}

// A manager under a low descriptor limit, with more connections that never speak than it can hold:
// a client that connects after them and speaks is served at once, the silent ones are closed, and
// running out of descriptors while accepting is said at most once a second.
TEST(ServerLimitsTest, SilentConnectionsDoNotLockOutAClientThatSpeaks) {
    testing::ScopedRuntimeDirectory directory;
    // Under the sanitizers the limit leaves room for what the listener takes at once: UBSan's vptr
    // check opens a pipe to probe memory, and with no descriptor left it reports a valid object as
    // one with an invalid vptr.
    const auto manager = StartManager(kSanitized ? "ulimit -n 256" : "ulimit -n 128");
    ASSERT_NE(manager, nullptr);
    const std::string socket = directory.ServerSocket("applicationManager_id");
    std::vector<std::unique_ptr<testing::RawSocket>> silent;
    for (int i = 0; i < 200; ++i) {
        silent.push_back(std::make_unique<testing::RawSocket>(socket));
    }
    const auto start = std::chrono::steady_clock::now();
    testing::RawSocket speaker(socket);
    EXPECT_NE(Resolve(speaker, "app_manager.applicationWatchdog"), 0xffff);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s) << "the speaking client waited for its answer";
    // The last silent one, which no later client pushed out, is closed within its few seconds.
    EXPECT_FALSE(silent.back()->Receive(10s).has_value());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 8s) << "a silent connection was kept";
    EXPECT_LE(CountLines(*manager, "Too many open files", 3s), 4u);
}

// A flood of 10-byte packets from one client: each is refused, and the log keeps a few lines a
// second, which count what they left out.
TEST(ServerLimitsTest, FloodOfRefusedFramesLogsABoundedNumberOfLinesWithWhatTheyLeftOut) {
    testing::ScopedRuntimeDirectory directory;
    const auto manager = StartManager();
    ASSERT_NE(manager, nullptr);
    testing::RawSocket raw(directory.ServerSocket("applicationManager_id"));
    const std::vector<unsigned char> shortPacket(10, 0x41);
    std::size_t logged = 0;
    std::string lastLogged;
    // Reads the manager's log as it comes, so that its pipe never fills.
    const auto readLog = [&](std::chrono::milliseconds quiet) {
        while (const auto line = manager->ReadLine(quiet)) {
            if (line->find("refused a frame") != std::string::npos) {
                ++logged;
                lastLogged = *line;
            }
        }
    };
    std::size_t refused = 0;
    for (const auto until = std::chrono::steady_clock::now() + 2s;
         std::chrono::steady_clock::now() < until;) {
        ASSERT_TRUE(raw.Send(shortPacket));
        const auto answer = raw.Receive(10s);
        ASSERT_TRUE(answer.has_value()) << "no answer after " << refused << " refusals";
        refused += testing::FrameField<uint16_t>(*answer, 8) == testing::kRawRefused ? 1 : 0;
        if (refused % 8 == 0) {
            readLog(5ms);
        }
    }
    // A second later the next refusal is logged again, saying how many lines it left out.
    std::this_thread::sleep_for(1100ms);
    ASSERT_TRUE(raw.Send(shortPacket));
    ASSERT_TRUE(raw.Receive(10s).has_value());
    readLog(300ms);
    EXPECT_GT(refused, 1000u);
    EXPECT_LE(logged, 12u) << refused << " frames refused";
    EXPECT_NE(lastLogged.find("similar lines suppressed"), std::string::npos) << lastLogged;
}

}  // namespace
}  // namespace hos::platform
