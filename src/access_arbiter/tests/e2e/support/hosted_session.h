// The hosted session of the end-to-end tests: the session of the build tree's executables on an X
// server of the tests' own (Xvfb, one per test process), with helpers that look at the program's
// window on the X server, click it and type into it with real X input events (xdotool), and run a
// real window manager (openbox).
//
// Thread: the test's thread only.
#pragma once

#include <hosted_session/session.h>

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace access_arbiter::e2e {

// Where the buttons of the 320x156 dialog are, in the window's own coordinates.
inline constexpr int kApproveX = 234;
inline constexpr int kDeclineX = 86;
inline constexpr int kButtonY = 110;

// Runs `command` with the shell and returns what it printed on standard output.
std::string RunCommand(const std::string& command);

using hl::hosted_session::ChildProcess;

// The hosted session of the build tree's executables, with what the tests do on its X server.
class HostedSession : public hl::hosted_session::Session {
public:
    // Starts Xvfb and sets DISPLAY (once per process); false if it does not come up.
    static bool StartDisplay();
    // openbox on that display, started anew, or replacing the running one with `replace`; false if
    // it can't be spawned. It is not waited for: WaitForWindowManager is true once it has announced
    // itself on the root window (and a replaced one has ended). StopWindowManager ends it.
    static bool StartWindowManager(bool replace = false);
    static bool WaitForWindowManager();
    static void StopWindowManager();

    // The manager names the program `name` (its argv[0], and the name it reports under).
    explicit HostedSession(const std::string& name = "AccessArbiter");

    // The X windows of AccessArbiter that are mapped (viewable) now.
    std::vector<std::string> ShownWindows() const;
    // Waits until exactly one window is shown; its id, or empty.
    std::string WaitShown(std::chrono::seconds timeout) const;
    bool WaitHidden(std::chrono::seconds timeout) const;
    // A real X click at (x, y) of the window: Approve is at (234, 110), Decline at (86, 110).
    void Click(const std::string& window, int x, int y) const;
    // Real X key strokes (xdotool key names) to whichever window has the keyboard focus.
    void Keys(const std::string& keys) const;
    // The program's resident set size in KiB, from /proc; 0 if it can't be read.
    long ProgramRssKiB() const;
};

}  // namespace access_arbiter::e2e
