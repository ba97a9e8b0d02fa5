// Callers of the decision service that meet across processes: the real AccessArbiter under
// hl-appmgr on an X server of the test's own, asked by real hl-ask processes and answered by real X
// clicks. The dispatcher thread serves one request at a time while the Qt main thread shows the
// dialog and takes the click.
#include "support/hosted_session.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <thread>

namespace access_arbiter::e2e {
namespace {

using namespace std::chrono_literals;

class DecisionCallers : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HostedSession::StartDisplay()) << "Xvfb did not start";
        ASSERT_TRUE(m_session.Start()) << m_session.Log();
        m_program = m_session.ProgramPid();
    }

    // After all this the program still stops normally; under the sanitizers this is where their
    // reports from the program show.
    void TearDown() override {
        if (m_program > 0 && !HasFatalFailure()) {
            EXPECT_TRUE(m_session.Stop()) << m_session.Log();
        }
    }

    // While `period` passes, the dialog is never up twice (sampled on the X server).
    void ExpectAtMostOneShownWindowFor(std::chrono::milliseconds period) {
        const auto end = std::chrono::steady_clock::now() + period;
        while (std::chrono::steady_clock::now() < end) {
            EXPECT_LE(m_session.ShownWindows().size(), 1U);
            std::this_thread::sleep_for(50ms);
        }
    }

    // The program that answered is the one that was started, and it was not restarted.
    void ExpectTheProgramStillServes() {
        EXPECT_EQ(kill(m_program, 0), 0) << m_session.Log();
        EXPECT_EQ(m_session.CountInLog("]: started"), 1U) << "the program was started again:\n"
                                                          << m_session.Log();
    }

    HostedSession m_session;
    pid_t m_program = -1;
};

TEST_F(DecisionCallers, TwoCallersAtOnceAreServedOneAfterTheOtherWithOneDialogAtATime) {
    std::unique_ptr<ChildProcess> callers[] = {m_session.Ask(), m_session.Ask()};
    std::string window = m_session.WaitShown(60s);
    ASSERT_FALSE(window.empty()) << m_session.Log();
    // The second request waits in the channel while the first is decided.
    ExpectAtMostOneShownWindowFor(1s);
    EXPECT_TRUE(callers[0]->Running() && callers[1]->Running()) << "an answer came without a click";

    m_session.Click(window, kApproveX, kButtonY);
    int answered = -1;
    for (int attempt = 0; attempt < 600 && answered < 0; ++attempt) {
        for (int i = 0; i < 2; ++i) {
            if (!callers[i]->Running()) {
                answered = i;
            }
        }
        std::this_thread::sleep_for(50ms);
    }
    ASSERT_GE(answered, 0) << "the click answered no caller";
    ChildProcess& first = *callers[answered];
    ChildProcess& second = *callers[1 - answered];
    EXPECT_EQ(first.Wait(0ms), 0);
    EXPECT_EQ(first.Output(), "approved\n");

    // The one click answered one caller; the next request brings the dialog up again.
    ExpectAtMostOneShownWindowFor(1s);
    EXPECT_TRUE(second.Running()) << second.Output();
    window = m_session.WaitShown(30s);
    ASSERT_FALSE(window.empty()) << "the second request did not show the dialog";
    m_session.Click(window, kDeclineX, kButtonY);
    EXPECT_EQ(second.Wait(30s), 1);
    EXPECT_EQ(second.Output(), "declined\n");
    EXPECT_TRUE(m_session.WaitHidden(10s));
    ExpectTheProgramStillServes();
}

TEST_F(DecisionCallers,
       ACallerKilledWhileTheDialogIsUpLeavesTheClickToEndItsRequestAndTheNextCallerIsServed) {
    auto gone = m_session.Ask();
    const std::string window = m_session.WaitShown(60s);
    ASSERT_FALSE(window.empty()) << m_session.Log();
    gone->Signal(SIGKILL);
    EXPECT_EQ(gone->Wait(10s), 128 + SIGKILL);

    // The person still decides; the answer has nobody to go to.
    m_session.Click(window, kApproveX, kButtonY);
    EXPECT_TRUE(m_session.WaitHidden(10s)) << "the click did not end the request";

    auto next = m_session.Ask({"--timeout", "60000"});
    const std::string again = m_session.WaitShown(60s);
    ASSERT_FALSE(again.empty()) << "the next caller got no dialog:\n" << m_session.Log();
    m_session.Click(again, kDeclineX, kButtonY);
    EXPECT_EQ(next->Wait(30s), 1) << next->Output();
    EXPECT_EQ(next->Output(), "declined\n");
    ExpectTheProgramStillServes();
}

}  // namespace
}  // namespace access_arbiter::e2e
