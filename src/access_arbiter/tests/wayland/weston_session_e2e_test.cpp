// The hosted session on a real Wayland compositor: weston (its X11 backend on a private Xvfb, which
// gives the compositor a seat with a keyboard and a pointer), hl-settingsd, hl-appmgr starting the real
// program with QT_QPA_PLATFORM=wayland, and hl-ask asking. The compositor maps the dialog and gives it the
// keyboard focus; the keyboard set-up of that first focus runs on the program's own connection
// (read from the program's Wayland protocol log); clicks reach the dialog through the compositor
// (real X input events into weston's window, turned by weston into wl_pointer events) and decide.
#include <hosted_session/session.h>
#include <hosted_session/x_display.h>

#include "support/wait_until.h"

#include <gtest/gtest.h>

#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using hl::hosted_session::ChildProcess;
namespace fs = std::filesystem;

constexpr const char* kSocket = "hl-e2e-wayland";

std::string Find(const std::string& program) {
    std::istringstream path(std::getenv("PATH") != nullptr ? std::getenv("PATH") : "/usr/bin:/bin");
    for (std::string dir; std::getline(path, dir, ':');) {
        if (access((dir + "/" + program).c_str(), X_OK) == 0) {
            return dir + "/" + program;
        }
    }
    return {};
}

std::string Read(const std::string& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class WestonSessionTest : public ::testing::Test {
protected:
    void SetUp() override {
        const std::string weston = Find("weston");
        if (weston.empty()) {
            GTEST_SKIP() << "weston is not installed (scripts/setup.sh installs it)";
        }
        ASSERT_FALSE(Find("xdotool").empty()) << "xdotool is missing (scripts/setup.sh installs it)";
        m_session = std::make_unique<hl::hosted_session::Session>(hl::hosted_session::SessionSetup::Beside(HL_BIN_DIR));
        const std::string dir = m_session->Directory();  // mode 0700: also the compositor's XDG_RUNTIME_DIR

        // The X server only carries weston's window and the input devices behind its seat.
        std::string error;
        m_x = hl::hosted_session::XDisplay::StartXvfb(dir + "/xvfb.log", error);
        ASSERT_TRUE(m_x) << error;
        setenv("DISPLAY", m_x->Name().c_str(), 1);
        setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
        // kiosk-shell shows the toplevel full screen from the output's corner, so the dialog's own
        // coordinates are those of weston's window, which is at the corner of the X screen.
        m_weston = std::make_unique<ChildProcess>(
            std::vector<std::string>{weston, "--backend=x11-backend.so", "--shell=kiosk-shell.so",
                                     std::string("--socket=") + kSocket, "--no-config", "--use-pixman",
                                     "--width=640", "--height=480", "--log=" + dir + "/weston.log"},
            dir + "/weston.out");
        ASSERT_TRUE(hos::platform::testing::WaitUntil([&] { return fs::exists(dir + "/" + kSocket); }, 30s)) << Read(dir + "/weston.log");

        // The session as a person's Wayland desktop has it: no X display for the program, whose
        // protocol log (WAYLAND_DEBUG) is read below.
        unsetenv("DISPLAY");
        setenv("WAYLAND_DISPLAY", kSocket, 1);
        setenv("QT_QPA_PLATFORM", "wayland", 1);
        setenv("QT_QUICK_BACKEND", "software", 1);
        setenv("WAYLAND_DEBUG", "client", 1);
        ASSERT_TRUE(m_session->Start()) << Log();
    }

    void TearDown() override {
        m_session.reset();
        if (m_weston) {
            m_weston->Stop(10s);
        }
        m_weston.reset();
        m_x.reset();
    }

    // xdotool's click at (x, y) of the X screen, where weston's window is.
    bool ClickX(int x, int y) {
        setenv("DISPLAY", m_x->Name().c_str(), 1);
        ChildProcess click({"xdotool", "mousemove", std::to_string(x), std::to_string(y), "click", "1"},
                           m_session->Directory() + "/xdotool.log");
        unsetenv("DISPLAY");
        return click.Wait(30s) == 0;
    }

    std::string Log() const { return m_session->Log(); }

    int Count(const std::regex& pattern) const {
        const std::string log = Log();
        return static_cast<int>(std::distance(std::sregex_iterator(log.begin(), log.end(), pattern), {}));
    }

    std::unique_ptr<hl::hosted_session::XDisplay> m_x;
    std::unique_ptr<ChildProcess> m_weston;
    std::unique_ptr<hl::hosted_session::Session> m_session;
};

TEST_F(WestonSessionTest,
       TheDialogOnWestonSetsUpTheKeyboardAtItsFirstFocusAndClicksThroughTheCompositorDecide) {
    // Qt's own keyboard, made on the program's start, before any window.
    std::smatch match;
    const std::string start = Log();
    ASSERT_TRUE(std::regex_search(
        start, match, std::regex(R"(-> wl_seat@(\d+)\.get_keyboard\(new id wl_keyboard@(\d+)\))")))
        << "the program has no keyboard of the compositor's seat";
    const std::string seat = match[1];
    const std::string qtKeyboard = match[2];
    const std::regex focus("wl_keyboard@" + qtKeyboard + R"(\.enter\()");

    // Approve is the right-hand button of the 320x156 dialog, Decline the left-hand one.
    struct Click {
        int x;
        int exitCode;
        const char* answer;
        const char* decision;
    };
    int shown = 0;
    for (const Click& click :
         {Click{234, 0, "approved", "decision = 1"}, Click{86, 1, "declined", "decision = 0"}}) {
        SCOPED_TRACE(click.answer);
        const auto asker = m_session->Ask({"--wait-for-service", "60000", "--timeout", "120000"});
        // The compositor gives the keyboard focus to a mapped surface only: the dialog is up.
        ASSERT_TRUE(hos::platform::testing::WaitUntil([&] { return Count(focus) > shown; }, 120s)) << "the dialog was not mapped\n"
                                                                         << Log();
        ++shown;
        std::this_thread::sleep_for(500ms);  // the first frame
        ASSERT_TRUE(ClickX(click.x, 110));
        const auto status = asker->Wait(60s);
        ASSERT_TRUE(status) << "the click did not answer hl-ask";
        EXPECT_EQ(*status, click.exitCode);
        EXPECT_EQ(asker->Output(), std::string(click.answer) + "\n");
        EXPECT_NE(Log().find(click.decision), std::string::npos);
    }

    // The keyboard set-up of the first focus: one keyboard of its own, from the toolkit's seat on
    // the toolkit's connection, made after that focus; the compositor's keymap reached it on its
    // queue, so it succeeded at once and its filter went away (it released its keyboard and made
    // no second one for the second focus). It never missed the keyboard.
    const std::string log = Log();
    const std::regex made(R"(-> wl_seat@(\d+)\.get_keyboard\(new id wl_keyboard@(\d+)\))");
    std::vector<std::smatch> keyboards(std::sregex_iterator(log.begin(), log.end(), made), {});
    ASSERT_EQ(keyboards.size(), 2U) << "the toolkit's keyboard and the set-up's one";
    EXPECT_EQ(keyboards[1][1].str(), seat) << "the set-up used another seat than the toolkit's";
    const std::string own = keyboards[1][2];
    std::smatch firstFocus;
    ASSERT_TRUE(std::regex_search(log, firstFocus, focus));
    EXPECT_GT(keyboards[1].position(0), firstFocus.position(0)) << "the set-up ran before the first focus";
    const auto keymap = log.find("wl_keyboard@" + own + ".keymap(1, ");
    const auto release = log.find("-> wl_keyboard@" + own + ".release()");
    EXPECT_NE(keymap, std::string::npos) << "the compositor's keymap did not reach the set-up";
    EXPECT_NE(release, std::string::npos) << "the set-up did not end";
    EXPECT_LT(keymap, release);
    EXPECT_EQ(log.find("Failed to get keyboard"), std::string::npos);
    EXPECT_EQ(Count(std::regex(R"(AccessArbiter\[\d+\]: started)")), 1) << "the program was restarted";
}

}  // namespace
