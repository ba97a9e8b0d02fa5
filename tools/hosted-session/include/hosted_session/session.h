// A hosted session made of the real executables: a runtime directory of its own, hl-settingsd serving
// the non-persistent settings (the program's language), and hl-appmgr running the program, as a
// person's session would; the manager and the program write to one log file in the session's
// directory. The run script, the end-to-end tests and the dialog benchmark all start sessions here.
//
//   Session session(SessionSetup::Beside(directoryOfThisExecutable));
//   if (session.Start()) { auto ask = session.Ask(); ... }   // the destructor stops it all
//
// The constructor points this process's HL_RUNTIME_DIR at the session (and FONTCONFIG_FILE at the
// session's font configuration, unless one is set), so every process started afterwards, by the
// session or not, reaches the session's services, and removes systemd's NOTIFY_SOCKET, WATCHDOG_USEC
// and WATCHDOG_PID, which are not meant for them. One session per process at a time.
//
// Thread: one thread. The session owns its processes; the destructor stops the manager (SIGTERM,
// which ends the program normally; SIGKILL after 20 s), then the settings service, and removes a
// private directory.
#pragma once

#include <hosted_session/child_process.h>

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace hl::hosted_session {

struct SessionSetup {
    std::string appmgr = "hl-appmgr";
    std::string settingsd = "hl-settingsd";
    std::string settings = "hl-settings";
    std::string ask = "hl-ask";
    // The managed application and the name the manager gives it.
    std::string program = "access_arbiter";
    std::string name = "AccessArbiter";
    // The session's font configuration (the platform's UI family); empty for none.
    std::string fontconfig;
    // The session's directory; empty for a new private one under $TMPDIR, removed at the end.
    std::string directory;

    // The layout of a build tree's bin/ and of an installation alike: each tool beside
    // `binDirectory` when it is there, else by name on PATH; the program in
    // `binDirectory`/../libexec/halcyra (where the manager, not a person, starts it); the font configuration in
    // `binDirectory`/../share/halcyra/hosted-session/fonts.conf when it is there.
    static SessionSetup Beside(const std::string& binDirectory);
    // The directory of the running executable.
    static std::string OwnDirectory();
};

class Session {
public:
    static constexpr const char* kSettingsService = "hl.settings_manager.MSmgr";

    explicit Session(SessionSetup setup);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // hl-settingsd for kSettingsService, `options` before the name (none: its shipped defaults);
    // waits up to 60 s for its "ready".
    bool StartSettings(const std::vector<std::string>& options = {});
    // hl-settings with `arguments`; its exit status, -1 when it does not end within 60 s.
    int SettingsTool(const std::vector<std::string>& arguments);

    // `hl-appmgr run --log-level 1 --unit FILE` (debug: each Ping is logged): the unit names the
    // program and its name, followed by `unitLines` ("key=value" lines). Nothing is waited for.
    // Called again once the manager has gone, it starts another.
    void StartManager(const std::string& unitLines);
    // The settings service when none runs yet, then the manager; waits up to `timeout` for one more
    // ReadyToShowUI of the program. False when either does not come up, or the program ends for
    // good first.
    bool Start(const std::string& unitLines = "restart=no\n",
               std::chrono::milliseconds timeout = std::chrono::seconds(120));
    ChildProcess& Manager() { return *m_manager; }
    bool ManagerRunning() { return m_manager && m_manager->Running(); }
    // SIGTERM to the manager, waiting up to 30 s; true when it ended with 0 and the program it ran
    // exited with status 0, as a normal stop does.
    bool Stop();

    const std::string& Directory() const { return m_setup.directory; }
    std::string RuntimeDirectory() const { return m_setup.directory + "/rt"; }
    std::string LogPath() const { return m_setup.directory + "/session.log"; }
    std::string Log() const;
    std::size_t CountInLog(const std::string& text) const;
    // Waits until the log holds `text` `count` times.
    bool WaitForLog(const std::string& text, std::chrono::milliseconds timeout, std::size_t count = 1) const;
    // The program's pid as the manager's last start line gives it, or -1.
    pid_t ProgramPid() const;

    // hl-ask with `options`, its answer in a file of its own.
    std::unique_ptr<ChildProcess> Ask(const std::vector<std::string>& options = {});

private:
    SessionSetup m_setup;
    bool m_ownDirectory = false;
    std::unique_ptr<ChildProcess> m_settings;
    std::unique_ptr<ChildProcess> m_manager;
    int m_asks = 0;
};

}  // namespace hl::hosted_session
