// Faults met by the real AccessArbiter under hl-appmgr, on an X server of the test's own: malformed and
// misdirected requests sent to its decision service by a raw client below the platform, a stop while
// a decision is still being asked for, and a server name held by another server.
#include "support/hosted_session.h"
#include "support/raw_socket.h"

#include <gtest/gtest.h>

#include <platform/platform.h>

#include <signal.h>

#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace access_arbiter::e2e {
namespace {

using namespace std::chrono_literals;
using namespace hos::platform::testing;  // RawSocket, RawFrame, FrameField and the frame kinds

// A Request frame of `size` bytes (header and zero fields, no arena) for interface `iid`, method `mid`.
std::vector<unsigned char> RequestFrame(std::uint16_t iid, std::uint16_t mid, std::uint32_t size,
                                        std::uint32_t sequence) {
    return RawFrame(kRawRequest, iid, mid, sequence, std::vector<unsigned char>(size - 24));
}

class SessionFaults : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(HostedSession::StartDisplay()) << "Xvfb did not start"; }

    std::string Socket() const { return m_session.Directory() + "/rt/servers/accessArbiter_id"; }

    // Nothing is shown for a while after a request that must not show the dialog.
    void ExpectNoDialog() {
        std::this_thread::sleep_for(500ms);
        EXPECT_TRUE(m_session.ShownWindows().empty()) << "the dialog was shown";
    }

    // One request answered by a click at `x`; the caller's exit status.
    std::optional<int> AskAndClick(int x) {
        auto caller = m_session.Ask();
        const std::string window = m_session.WaitShown(60s);
        EXPECT_FALSE(window.empty()) << m_session.Log();
        m_session.Click(window, x, 110);
        const auto status = caller->Wait(30s);
        EXPECT_TRUE(m_session.WaitHidden(10s));
        return status;
    }

    HostedSession m_session;
};

TEST_F(SessionFaults,
       BadRequestsGetTheLoopsExactAnswersWithALogLineAndNoDialogUntilAnUnknownInterfaceEndsIt) {
    ASSERT_TRUE(m_session.Start()) << m_session.Log();
    RawSocket client(Socket());
    ASSERT_TRUE(client.IsConnected());
    const struct {
        const char* what;
        std::vector<unsigned char> frame;
        std::uint32_t refusal;
        const char* logLine;
    } refused[] = {
        // Before any answer the response buffer is a zero header, which cannot go out as a reply.
        {"another mid", RequestFrame(1, 7, 24, 1), 0x90000002,
         "size word gives 0 bytes, less than the header"},
        {"a short frame", std::vector<unsigned char>(10, 1), 0x90000016, "shorter than the 24-byte header"},
        {"an oversized frame", RequestFrame(1, 0, 124, 3), 0x90000018, "exceeds the room of 24 bytes"},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(client.Send(c.frame));
        const auto answer = client.Receive(10s);
        ASSERT_TRUE(answer.has_value());
        EXPECT_EQ(FrameField<std::uint16_t>(*answer, 8), kRawRefused);
        EXPECT_EQ(FrameField<std::uint32_t>(*answer, 20), c.refusal);
        EXPECT_TRUE(m_session.WaitForLog(c.logLine, 10s));
        ExpectNoDialog();
    }

    // The loop went on: a caller is served, and its answer stays in the response buffer.
    EXPECT_EQ(AskAndClick(234), 0);

    // Another mid gets that stale answer back, iid 1, mid 0 and the byte 1, without a dialog; an
    // unknown interface gets the same and ends the loop for good.
    for (const std::uint16_t iid : {1, 2}) {
        SCOPED_TRACE(iid);
        ASSERT_TRUE(client.Send(RequestFrame(iid, iid == 1 ? 7 : 0, 24, 10 + iid)));
        const auto answer = client.Receive(10s);
        ASSERT_TRUE(answer.has_value());
        EXPECT_EQ(FrameField<std::uint16_t>(*answer, 8), kRawResponse);
        EXPECT_EQ(FrameField<std::uint16_t>(*answer, 0), 1);
        EXPECT_EQ(FrameField<std::uint16_t>(*answer, 2), 0);
        EXPECT_EQ(FrameField<std::uint32_t>(*answer, 16), 10U + iid);
        EXPECT_EQ(FrameField<std::uint8_t>(*answer, 24), 1);
        ExpectNoDialog();
    }
    // Nothing is received any more: a caller waits until it gives up, and nothing is shown. The
    // program itself goes on, pinging its manager.
    const std::size_t pings = m_session.CountInLog("]: Ping");
    auto late = m_session.Ask({"--timeout", "2000"});
    EXPECT_EQ(late->Wait(30s), 5);
    EXPECT_NE(late->Output().find("timed out after 2000 ms"), std::string::npos) << late->Output();
    EXPECT_TRUE(m_session.ShownWindows().empty());
    EXPECT_TRUE(m_session.WaitForLog("]: Ping", 5s, pings + 2));
    EXPECT_TRUE(m_session.Stop()) << "the program did not stop normally:\n" << m_session.Log();
}

TEST_F(SessionFaults, AStopWhileADecisionIsAskedForEndsTheProgramWithSigkillAfterTheUnitsStopTimeout) {
    ASSERT_TRUE(m_session.Start("restart=no\nstop_timeout_ms=1500\n")) << m_session.Log();
    const std::string pid = std::to_string(m_session.ProgramPid());
    auto caller = m_session.Ask();
    ASSERT_FALSE(m_session.WaitShown(60s).empty()) << m_session.Log();

    const auto stopped = std::chrono::steady_clock::now();
    m_session.Manager().Signal(SIGTERM);
    EXPECT_EQ(m_session.Manager().Wait(30s), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - stopped, 1500ms);
    // The event loop ends and the manager hears of it; the teardown then waits for the decision.
    for (const std::string& line :
         {std::string("AccessArbiter stopped with code 0"), "AccessArbiter[" + pid + "]: StateChanged(-2)",
          "AccessArbiter[" + pid + "]: did not end within 1500 ms of SIGTERM; sending SIGKILL",
          "AccessArbiter[" + pid + "]: killed by signal 9 (stopped)"}) {
        EXPECT_EQ(m_session.CountInLog(line), 1U) << line << "\n" << m_session.Log();
    }
    EXPECT_EQ(caller->Wait(10s), 3);
    EXPECT_NE(caller->Output().find("peer gone"), std::string::npos) << caller->Output();
}

// The program's own failure path: its server name is held by another server, so the dispatcher cannot
// be made; the start fails with the check's text, reported to the manager, and the program exits 1.
TEST_F(SessionFaults, AHeldServerNameFailsTheStartWithTheDispatcherTextReportedToTheManager) {
    unsigned int id = 0;
    const unsigned int held = ServiceLocatorRegister("accessArbiter_id", nullptr, 0, &id);
    ASSERT_NE(held, NK_INVALID_HANDLE);
    ASSERT_TRUE(m_session.StartSettings());
    m_session.StartManager("restart=no\n");
    EXPECT_TRUE(m_session.WaitForLog("]: exited with status 1", 120s)) << m_session.Log();
    EXPECT_EQ(m_session.CountInLog("Failed to create ipc dispatcher!"), 1U) << m_session.Log();
    EXPECT_EQ(m_session.CountInLog("AccessArbiter start with error"), 1U);
    EXPECT_EQ(m_session.CountInLog("]: FinishWithInternalError: Failed to start AccessArbiter / Failed to "
                                   "start AccessArbiter: Unspecified error = 0x8000004b"),
              1U);
    EXPECT_EQ(m_session.CountInLog("App AccessArbiter crashed with error"), 1U);
    EXPECT_EQ(m_session.CountInLog("]: ReadyToInitialize"), 1U);
    EXPECT_EQ(m_session.CountInLog("]: ReadyToShowUI"), 0U);
    KnHandleClose(held);
    ServiceLocatorUnregister(id);
}

// The program calls itself by its argv[0], which the manager sets to the unit's name; an empty one is
// logged once and the default name reaches the manager instead.
TEST(ProgramName, TheManagerHearsTheNameItGaveOrTheDefaultForAnEmptyOne) {
    ASSERT_TRUE(HostedSession::StartDisplay());
    {
        HostedSession session("access_arbiter");
        ASSERT_TRUE(session.Start()) << session.Log();
        const std::string pid = std::to_string(session.ProgramPid());
        EXPECT_TRUE(session.WaitForLog("access_arbiter[" + pid + "]: Ping", 30s)) << session.Log();
        EXPECT_EQ(session.CountInLog("access_arbiter[" + pid + "]: ReadyToShowUI"), 1U) << session.Log();
        EXPECT_EQ(session.CountInLog("Failed to get an app name"), 0U);
        EXPECT_TRUE(session.Stop()) << session.Log();
    }
    HostedSession session;
    ASSERT_TRUE(session.Start("restart=no\nprogram=/bin/bash\nargument=-c\nargument=exec -a '' " HL_PROGRAM
                              "\n"))
        << session.Log();
    EXPECT_EQ(session.CountInLog("Failed to get an app name"), 1U) << session.Log();
    EXPECT_EQ(session.CountInLog("AccessArbiter[" + std::to_string(session.ProgramPid()) + "]: ReadyToShowUI"),
              1U);
    EXPECT_TRUE(session.Stop()) << session.Log();
}

// Without a manager to find, the program ends at once with status 1 and no report to anyone.
TEST(ProgramName, WithoutAManagerTheProgramExitsOne) {
    HostedSession session;
    ChildProcess program({HL_PROGRAM}, session.Directory() + "/alone");
    EXPECT_EQ(program.Wait(120s), 1) << program.Output();
    EXPECT_NE(program.Output().find("App manager in null"), std::string::npos) << program.Output();
    EXPECT_NE(program.Output().find("Cannot create application manager proxy"), std::string::npos);
    EXPECT_EQ(program.Output().find("AccessArbiter is ready"), std::string::npos);
    EXPECT_EQ(program.Output().find("crashed with error"), std::string::npos) << "no status, so no report";
}

}  // namespace
}  // namespace access_arbiter::e2e
