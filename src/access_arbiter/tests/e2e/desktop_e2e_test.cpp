// The dialog on a desktop as a person meets it, with the real executables on an X server of the
// tests' own: a real window manager (openbox) that places, stacks, focuses and closes windows and
// may start or restart around a request; the keyboard; a screen reader's AT-SPI client on a D-Bus
// session of the test's own; and many requests in a row to the one resident program.
#include "support/hosted_session.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <stdlib.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>
#include <thread>

namespace access_arbiter::e2e {
namespace {

using hos::platform::testing::WaitUntil;
using namespace std::chrono_literals;

std::string Trimmed(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

// The last window id of an xprop list ("… window id # 0x600006, 0x800009"), in xdotool's decimal form.
std::string LastListedWindow(const std::string& xpropLine) {
    const auto at = xpropLine.rfind("0x");
    return at == std::string::npos ? std::string()
                                   : std::to_string(std::stoul(xpropLine.substr(at), nullptr, 16));
}

std::string ActiveWindow() {
    return LastListedWindow(RunCommand("xprop -root _NET_ACTIVE_WINDOW"));
}

std::string TopWindow() {
    return LastListedWindow(RunCommand("xprop -root _NET_CLIENT_LIST_STACKING"));
}

std::string Property(const std::string& window, const std::string& name) {
    return Trimmed(RunCommand("xprop -id " + window + " " + name));
}

// The StartupWMClass of the program's desktop entry.
std::string DesktopEntryWindowClass() {
    std::ifstream entry(HL_DESKTOP_ENTRY);
    for (std::string line; std::getline(entry, line);) {
        if (line.rfind("StartupWMClass=", 0) == 0) {
            return line.substr(15);
        }
    }
    return {};
}

class WindowManager : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HostedSession::StartDisplay()) << "Xvfb did not start";
        ASSERT_TRUE(HostedSession::StartWindowManager() && HostedSession::WaitForWindowManager())
            << "openbox did not start";
        ASSERT_TRUE(m_session.Start()) << m_session.Log();
    }

    void TearDown() override {
        if (!HasFatalFailure()) {
            EXPECT_TRUE(m_session.Stop()) << m_session.Log();
        }
        HostedSession::StopWindowManager();
    }

    // The dialog for a new request, once the window manager has given it the focus.
    std::string ShownAndFocused(std::unique_ptr<ChildProcess>& caller) {
        caller = m_session.Ask();
        const std::string window = m_session.WaitShown(60s);
        if (window.empty()) {
            ADD_FAILURE() << "no dialog was shown\n" << m_session.Log();
            return {};
        }
        EXPECT_TRUE(WaitUntil([&] { return ActiveWindow() == window; }, 10s))
            << "the dialog has no focus; active: " << ActiveWindow();
        return window;
    }

    void ExpectTheProgramWasNotRestarted() {
        EXPECT_EQ(m_session.CountInLog("]: started"), 1U) << m_session.Log();
    }

    HostedSession m_session;
};

TEST_F(WindowManager, TheDialogOpensAboveTheFullScreenWindowTakesTheFocusAndTheKeyboardAnswers) {
    ChildProcess terminal({"/usr/bin/xterm"}, m_session.Directory() + "/xterm");
    // A search fails as a whole when a window goes away under it (BadWindow): search again.
    std::string busy;
    ASSERT_TRUE(WaitUntil(
        [&] {
            busy = Trimmed(RunCommand("xdotool search --onlyvisible --class XTerm 2>/dev/null | head -1"));
            return !busy.empty();
        },
        20s))
        << "xterm did not show";
    RunCommand("wmctrl -i -r " + busy + " -b add,fullscreen && wmctrl -i -a " + busy);
    m_session.Click(busy, 100, 100);
    m_session.Keys("l s");
    ASSERT_TRUE(WaitUntil([&] { return ActiveWindow() == busy && TopWindow() == busy; }, 10s));

    std::unique_ptr<ChildProcess> caller;
    const std::string window = ShownAndFocused(caller);
    ASSERT_FALSE(window.empty());
    EXPECT_EQ(TopWindow(), window) << "the dialog is not on top";
    EXPECT_NE(Property(window, "_NET_WM_WINDOW_TYPE").find("_NET_WM_WINDOW_TYPE_DIALOG"), std::string::npos);
    EXPECT_NE(Property(window, "_NET_WM_STATE").find("_NET_WM_STATE_ABOVE"), std::string::npos);
    // WM_CLASS is "instance", "class"; the class names the desktop entry.
    const std::string windowClass = Property(window, "WM_CLASS");
    EXPECT_EQ(windowClass.substr(windowClass.rfind(", ") + 2), "\"" + DesktopEntryWindowClass() + "\"");

    // With the focus it has, the keyboard answers: Tab, Tab, Return approve.
    std::this_thread::sleep_for(300ms);  // the first frame
    m_session.Keys("Tab Tab Return");
    EXPECT_EQ(caller->Wait(30s), 0) << caller->Output();
    EXPECT_EQ(caller->Output(), "approved\n");
}

TEST_F(WindowManager, ACloseThroughTheWindowManagerLeavesTheDialogUpAndItsClickStillAnswers) {
    std::unique_ptr<ChildProcess> caller;
    std::string window = ShownAndFocused(caller);
    ASSERT_FALSE(window.empty());

    std::ostringstream hex;
    hex << "0x" << std::hex << std::stoul(window);
    RunCommand("wmctrl -i -c " + hex.str());
    EXPECT_TRUE(m_session.WaitForLog("asked to close the window 'AccessArbiter'; refused", 10s))
        << m_session.Log();
    std::this_thread::sleep_for(500ms);
    EXPECT_EQ(m_session.ShownWindows().size(), 1U) << "the close took the dialog down";
    EXPECT_TRUE(caller->Running()) << caller->Output();

    m_session.Click(window, kApproveX, kButtonY);
    EXPECT_EQ(caller->Wait(30s), 0) << caller->Output();

    // The program stays resident and serves the next request.
    window = ShownAndFocused(caller);
    ASSERT_FALSE(window.empty());
    m_session.Click(window, kDeclineX, kButtonY);
    EXPECT_EQ(caller->Wait(30s), 1) << caller->Output();
    EXPECT_EQ(m_session.CountInLog("AccessArbiter stopped with code"), 0U) << m_session.Log();
    ExpectTheProgramWasNotRestarted();
}

TEST_F(WindowManager, EveryRequestSentAsTheWindowManagerStartsOrRestartsShowsTheDialog) {
    for (int request = 0; request < 50; ++request) {
        SCOPED_TRACE(request);
        const bool replace = request % 2 == 1;
        ASSERT_TRUE(HostedSession::StartWindowManager(replace));
        auto caller = m_session.Ask();
        ASSERT_FALSE(m_session.WaitShown(30s).empty()) << "the dialog did not appear\n" << m_session.Log();
        ASSERT_TRUE(HostedSession::WaitForWindowManager());
        const std::string window = m_session.WaitShown(30s);
        ASSERT_FALSE(window.empty()) << "the window manager took the dialog down\n" << m_session.Log();
        m_session.Click(window, replace ? kDeclineX : kApproveX, kButtonY);
        ASSERT_EQ(caller->Wait(30s), replace ? 1 : 0) << caller->Output();
        ASSERT_TRUE(m_session.WaitHidden(10s));
    }
    ExpectTheProgramWasNotRestarted();
}

// Many requests to the one resident program, each answered by one real click, Approve and Decline in
// turn: every answer matches its button, the manager never restarts the program, and the resident
// set size is printed at each tenth of the run. HL_SOAK_REQUESTS sets the count (50 by default);
// scripts/soak-dialog.sh runs a thousand and judges the figures.
TEST(Soak, EveryRequestOfALongRunGetsTheAnswerOfItsClick) {
    ASSERT_TRUE(HostedSession::StartDisplay()) << "Xvfb did not start";
    const char* configured = std::getenv("HL_SOAK_REQUESTS");
    const int requests = configured != nullptr ? std::atoi(configured) : 50;
    ASSERT_GE(requests, 10);
    HostedSession session;
    ASSERT_TRUE(session.Start()) << session.Log();
    int right = 0;
    std::ostringstream samples;
    for (int request = 1; request <= requests; ++request) {
        const bool approve = request % 2 == 1;
        auto caller = session.Ask();
        const std::string window = session.WaitShown(60s);
        ASSERT_FALSE(window.empty()) << "request " << request << " showed nothing\n" << session.Log();
        session.Click(window, approve ? kApproveX : kDeclineX, kButtonY);
        const auto status = caller->Wait(30s);
        right += status == (approve ? 0 : 1) && caller->Output() == (approve ? "approved\n" : "declined\n");
        ASSERT_TRUE(session.WaitHidden(10s)) << "request " << request;
        if (request % (requests / 10) == 0) {
            samples << " " << request << ":" << session.ProgramRssKiB();
        }
    }
    std::cout << "soak: requests " << requests << " right " << right << " restarts "
              << session.CountInLog("]: started") - 1 << " rss_kib" << samples.str() << std::endl;
    EXPECT_EQ(right, requests);
    EXPECT_EQ(session.CountInLog("]: started"), 1U) << session.Log();
    EXPECT_TRUE(session.Stop()) << session.Log();
}

// A screen reader on a D-Bus session of the test's own, with assistive technology turned on before
// the program starts, as a person who uses one has it.
class ScreenReader : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HostedSession::StartDisplay()) << "Xvfb did not start";
        std::istringstream bus(RunCommand("dbus-daemon --session --fork --print-address=1 --print-pid=1"));
        std::string address;
        ASSERT_TRUE(std::getline(bus, address) && bus >> m_bus) << "no D-Bus session";
        setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
        ASSERT_EQ(Reader("enable"), "");
        ASSERT_TRUE(m_session.Start()) << m_session.Log();
    }

    void TearDown() override {
        if (!HasFatalFailure()) {
            EXPECT_TRUE(m_session.Stop()) << m_session.Log();
        }
        if (m_bus > 0) {
            kill(m_bus, SIGTERM);
        }
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }

    static std::string Reader(const std::string& arguments) {
        return RunCommand("/usr/bin/python3 " HL_SCREEN_READER " " + arguments + " 2>&1");
    }

    HostedSession m_session;
    pid_t m_bus = -1;
};

TEST_F(ScreenReader, ReadsTheTitleAndTheQuestionAndItsPressOfDeclineAnswersTheRequest) {
    auto caller = m_session.Ask();
    ASSERT_FALSE(m_session.WaitShown(60s).empty()) << m_session.Log();
    const std::string tree = Reader("read access_arbiter");
    for (const char* line : {"frame: AccessArbiter", "label: Connection request",
                             "label: A user requests access to manage your device", "push button: Decline",
                             "push button: Approve"}) {
        EXPECT_NE(tree.find(line), std::string::npos) << line << "\n" << tree;
    }
    std::cout << tree;

    EXPECT_EQ(Reader("press access_arbiter Decline"), "Press: True\n");
    EXPECT_EQ(caller->Wait(30s), 1) << caller->Output();
    EXPECT_EQ(caller->Output(), "declined\n");
    ASSERT_TRUE(m_session.WaitHidden(10s));

    // A press of the hidden dialog's button decides nothing: the next request waits for its own click.
    Reader("press access_arbiter Approve");
    caller = m_session.Ask();
    const std::string window = m_session.WaitShown(60s);
    ASSERT_FALSE(window.empty()) << "a stale press answered the next request\n" << caller->Output();
    EXPECT_TRUE(caller->Running());
    m_session.Click(window, kDeclineX, kButtonY);
    EXPECT_EQ(caller->Wait(30s), 1) << caller->Output();
}

}  // namespace
}  // namespace access_arbiter::e2e
