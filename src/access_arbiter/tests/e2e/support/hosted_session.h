// A hosted session for the end-to-end tests, made of the real executables: an X server of its own
// (Xvfb, one per test process), a runtime directory of its own, hl-settingsd serving the
// non-persistent settings, and hl-appmgr running AccessArbiter as a person's session would, with both
// writing to one log file. Helpers start hl-ask, look at the
// program's window on the X server and click it with real X input events (xdotool).
//
// Thread: the test's thread only. The session owns the manager's process: its destructor stops it
// with SIGTERM (which ends AccessArbiter normally) and SIGKILL after 20 s.
#pragma once

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

// A child process with its standard output in a file; the destructor kills and reaps a running one.
class ChildProcess {
public:
    ChildProcess(const std::vector<std::string>& arguments, const std::string& outputPath);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t Pid() const { return m_pid; }
    // The exit status (128 + signal for a killed one), or nothing if it has not ended within `timeout`.
    std::optional<int> Wait(std::chrono::milliseconds timeout);
    bool Running();
    void Signal(int signalNumber) const;
    std::string Output() const;

private:
    pid_t m_pid = -1;
    std::optional<int> m_status;
    std::string m_outputPath;
};

class HostedSession {
public:
    // Starts Xvfb and sets DISPLAY (once per process); false if it does not come up.
    static bool StartDisplay();
    // openbox on that display, started anew, or replacing the running one with `replace`; false if
    // it can't be spawned. It is not waited for: WaitForWindowManager is true once it has announced
    // itself on the root window (and a replaced one has ended). StopWindowManager ends it.
    static bool StartWindowManager(bool replace = false);
    static bool WaitForWindowManager();
    static void StopWindowManager();

    HostedSession();
    ~HostedSession();
    HostedSession(const HostedSession&) = delete;
    HostedSession& operator=(const HostedSession&) = delete;

    // hl-settingsd for "hl.settings_manager.MSmgr", `options` before the name (none: its shipped
    // defaults, which hold the language "en-US"); waits for its "ready".
    bool StartSettings(const std::vector<std::string>& options = {});
    // hl-settings with `arguments`, against this session's services; its exit status, -1 if it hangs.
    int SettingsTool(const std::vector<std::string>& arguments);

    // hl-appmgr run --unit FILE, the unit being AccessArbiter's program and name followed by
    // `unitLines` ("key=value" lines); the manager and the program append to the log. Waits for the
    // program's ReadyToShowUI. Starts hl-settingsd first when none runs yet. Called again once the
    // manager has gone, it starts another.
    bool Start(const std::string& unitLines = "restart=no\n");
    // The manager alone: no settings service is started, and nothing is waited for.
    void StartManager(const std::string& unitLines);
    ChildProcess& Manager() { return *m_manager; }
    // Stops the manager with SIGTERM and waits for it; true when it ended with 0 and its application
    // exited with status 0, as a normal stop does (a sanitizer's report in the program changes that).
    bool Stop();

    const std::string& Directory() const { return m_directory; }
    std::string Log() const;
    // Waits until the log holds `text` `count` times.
    bool WaitForLog(const std::string& text, std::chrono::seconds timeout, std::size_t count = 1) const;
    std::size_t CountInLog(const std::string& text) const;
    // The program's pid as the manager's last start line gives it, or -1.
    pid_t ProgramPid() const;

    // hl-ask with `options`, its answer in a file of its own.
    std::unique_ptr<ChildProcess> Ask(const std::vector<std::string>& options = {});

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

private:
    std::string m_directory;
    std::unique_ptr<ChildProcess> m_settings;
    std::unique_ptr<ChildProcess> m_manager;
    int m_asks = 0;
};

}  // namespace access_arbiter::e2e
