// The hosted session on a real Wayland compositor: weston (its X11 backend on a private Xvfb, which
// gives the compositor a seat with a keyboard and a pointer), hl-settingsd, hl-appmgr starting the real
// program with QT_QPA_PLATFORM=wayland, and hl-ask asking. The compositor maps the dialog and gives it the
// keyboard focus; the keyboard set-up of that first focus runs on the program's own connection
// (read from the program's Wayland protocol log); clicks reach the dialog through the compositor
// (real X input events into weston's window, turned by weston into wl_pointer events) and decide.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
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

extern char** environ;

namespace {

using namespace std::chrono_literals;
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

// Polls `ready` every 50 ms for up to `limit`.
bool WaitFor(const std::function<bool()>& ready, std::chrono::seconds limit) {
    for (const auto end = std::chrono::steady_clock::now() + limit; std::chrono::steady_clock::now() < end;) {
        if (ready()) {
            return true;
        }
        std::this_thread::sleep_for(50ms);
    }
    return ready();
}

class WestonSessionTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_weston = Find("weston");
        if (m_weston.empty()) {
            GTEST_SKIP() << "weston is not installed (scripts/setup.sh installs it)";
        }
        ASSERT_FALSE(Find("Xvfb").empty()) << "Xvfb is missing (scripts/setup.sh installs it)";
        ASSERT_FALSE(Find("xdotool").empty()) << "xdotool is missing (scripts/setup.sh installs it)";
        char pattern[] = "/tmp/hl-weston-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;  // mode 0700: also the compositor's XDG_RUNTIME_DIR

        // The X server only carries weston's window and the input devices behind its seat.
        Spawn({"Xvfb", "-displayfd", "3", "-screen", "0", "1024x768x24", "-nolisten", "tcp"}, {}, "xvfb.log",
              "display");
        ASSERT_TRUE(WaitFor([&] { return Read(m_dir + "/display").find('\n') != std::string::npos; }, 30s));
        const std::string display =
            ":" + Read(m_dir + "/display").substr(0, Read(m_dir + "/display").find('\n'));
        m_x = {"DISPLAY=" + display};
        // kiosk-shell shows the toplevel full screen from the output's corner, so the dialog's own
        // coordinates are those of weston's window, which is at the corner of the X screen.
        Spawn({m_weston, "--backend=x11-backend.so", "--shell=kiosk-shell.so",
               std::string("--socket=") + kSocket, "--no-config", "--use-pixman", "--width=640",
               "--height=480", "--log=" + m_dir + "/weston.log"},
              {m_x[0], "XDG_RUNTIME_DIR=" + m_dir}, "weston.out");
        ASSERT_TRUE(WaitFor([&] { return fs::exists(m_dir + "/" + kSocket); }, 30s))
            << Read(m_dir + "/weston.log");

        // The session as a person's Wayland desktop has it: no X display for the program.
        m_session = {"XDG_RUNTIME_DIR=" + m_dir,        std::string("WAYLAND_DISPLAY=") + kSocket,
                     "QT_QPA_PLATFORM=wayland",         "QT_QUICK_BACKEND=software",
                     "HL_RUNTIME_DIR=" + m_dir + "/hl", "DISPLAY="};
        // The non-persistent settings service, from which the program reads its language.
        Spawn({HL_SETTINGSD_EXECUTABLE, "hl.settings_manager.MSmgr"}, m_session, "settingsd.out");
        ASSERT_TRUE(
            WaitFor([&] { return Read(m_dir + "/settingsd.out").find("ready\n") != std::string::npos; }, 60s))
            << Read(m_dir + "/settingsd.out");
        std::vector<std::string> program = m_session;
        program.push_back("WAYLAND_DEBUG=client");  // the program's protocol log, read below
        Spawn({HL_APPMGR_EXECUTABLE, "run", "--restart", "no", "--name", "AccessArbiter", "--",
               HL_ACCESS_ARBITER_EXECUTABLE},
              program, "session.log");
        ASSERT_TRUE(WaitFor(
            [&] {
                return Log().find("AccessArbiter[") != std::string::npos &&
                       Log().find("]: ReadyToShowUI") != std::string::npos;
            },
            120s))
            << Log();
    }

    void TearDown() override {
        for (auto it = m_children.rbegin(); it != m_children.rend(); ++it) {
            kill(*it, SIGTERM);
            if (!WaitFor([pid = *it] { return waitpid(pid, nullptr, WNOHANG) != 0; }, 10s)) {
                kill(*it, SIGKILL);
                waitpid(*it, nullptr, 0);
            }
        }
        if (!m_dir.empty()) {
            fs::remove_all(m_dir);
        }
    }

    // Starts `argv` with the test's environment changed by `env` (an empty value removes the
    // variable), standard output and error into `log`, and optionally fd 3 into `fd3`.
    pid_t Spawn(const std::vector<std::string>& argv, const std::vector<std::string>& env,
                const std::string& log, const std::string& fd3 = {}) {
        std::vector<std::string> environment;
        for (char** entry = environ; *entry != nullptr; ++entry) {
            const std::string text = *entry;
            bool replaced = false;
            for (const auto& change : env) {
                replaced |= text.compare(0, change.find('=') + 1, change, 0, change.find('=') + 1) == 0;
            }
            if (!replaced) {
                environment.push_back(text);
            }
        }
        for (const auto& change : env) {
            if (change.back() != '=') {
                environment.push_back(change);
            }
        }
        std::vector<char*> args, envp;
        for (const auto& a : argv) {
            args.push_back(const_cast<char*>(a.c_str()));
        }
        args.push_back(nullptr);
        for (const auto& e : environment) {
            envp.push_back(const_cast<char*>(e.c_str()));
        }
        envp.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        const std::string out = m_dir + "/" + log;
        posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        posix_spawn_file_actions_adddup2(&actions, 1, 2);
        const std::string third = m_dir + "/" + fd3;
        if (!fd3.empty()) {
            posix_spawn_file_actions_addopen(&actions, 3, third.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        }
        pid_t pid = -1;
        const int rc = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), envp.data());
        posix_spawn_file_actions_destroy(&actions);
        EXPECT_EQ(rc, 0) << "cannot start " << argv[0];
        if (rc == 0) {
            m_children.push_back(pid);
        }
        return pid;
    }

    // Waits up to `limit` for a child to end; an ended child is no longer stopped at tear-down.
    bool Reap(pid_t pid, int& status, std::chrono::seconds limit) {
        if (!WaitFor([&] { return waitpid(pid, &status, WNOHANG) == pid; }, limit)) {
            return false;
        }
        std::erase(m_children, pid);
        return true;
    }

    std::string Log() const { return Read(m_dir + "/session.log"); }

    int Count(const std::regex& pattern) const {
        const std::string log = Log();
        return static_cast<int>(std::distance(std::sregex_iterator(log.begin(), log.end(), pattern), {}));
    }

    std::string m_weston;
    std::string m_dir;
    std::vector<std::string> m_x;
    std::vector<std::string> m_session;
    std::vector<pid_t> m_children;
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
        const pid_t asker = Spawn({HL_ASK_EXECUTABLE, "--wait-for-service", "60000", "--timeout", "120000"},
                                  m_session, std::string("ask-") + click.answer);
        // The compositor gives the keyboard focus to a mapped surface only: the dialog is up.
        ASSERT_TRUE(WaitFor([&] { return Count(focus) > shown; }, 120s)) << "the dialog was not mapped\n"
                                                                         << Log();
        ++shown;
        std::this_thread::sleep_for(500ms);  // the first frame
        int status = -1;
        ASSERT_TRUE(Reap(
            Spawn({"xdotool", "mousemove", std::to_string(click.x), "110", "click", "1"}, m_x, "xdotool.log"),
            status, 30s));
        ASSERT_TRUE(Reap(asker, status, 60s)) << "the click did not answer hl-ask";
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == click.exitCode) << "status " << status;
        EXPECT_EQ(Read(m_dir + "/ask-" + click.answer), std::string(click.answer) + "\n");
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
