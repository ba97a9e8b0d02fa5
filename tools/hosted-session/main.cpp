// hl-session: runs a hosted session, and a command in it, the way xvfb-run and dbus-run-session do.
#include <hosted_session/session.h>
#include <hosted_session/x_display.h>

#include <hl_cli/tool.h>

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <iostream>
#include <stop_token>
#include <thread>

namespace {

using namespace std::chrono_literals;
using hl::hosted_session::ChildProcess;
using hl::hosted_session::Session;
using hl::hosted_session::SessionSetup;
using hl::hosted_session::SpawnOptions;
using hl::hosted_session::XDisplay;

// Exit statuses of its own, apart from the command's, as env(1) and timeout(1) keep them.
constexpr int kCantStart = 125;
constexpr int kCommandNotRun = 127;

constexpr const char* kDescription =
    "Runs a hosted session: on the display of DISPLAY or WAYLAND_DISPLAY (without either, on a private\n"
    "Xvfb), in a private runtime directory, hl-settingsd for the non-persistent settings and the program\n"
    "under hl-appmgr. Once the program reports ReadyToShowUI, COMMAND runs in the session (DISPLAY and\n"
    "HL_RUNTIME_DIR set); then the session stops in order: the manager, which ends the program, the\n"
    "settings service, the X server. Without COMMAND the session runs until SIGINT or SIGTERM.\n"
    "The manager's and the program's log is copied to standard error.";

std::atomic<int> g_stopSignal{0};

void OnStopSignal(int signalNumber) {
    g_stopSignal = signalNumber;
}

// Copies what the session's log gains to standard error until stopped, then what is left.
void FollowLog(const std::string& path, std::stop_token stop) {
    int log = -1;
    char buffer[4096];
    for (bool last = false; !last;) {
        last = stop.stop_requested();
        if (log < 0) {
            log = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        }
        ssize_t got = 0;
        while (log >= 0 && (got = ::read(log, buffer, sizeof buffer)) > 0) {
            static_cast<void>(::write(STDERR_FILENO, buffer, static_cast<std::size_t>(got)));
        }
        if (!last) {
            std::this_thread::sleep_for(50ms);
        }
    }
    if (log >= 0) {
        ::close(log);
    }
}

int Fail(const std::string& message) {
    std::cerr << "hl-session: " << message << '\n';
    return kCantStart;
}

}  // namespace

int main(int argc, char** argv) {
    hl::cli::Tool tool("hl-session", kDescription,
                       {{0, "without COMMAND: stopped by a signal; with COMMAND: COMMAND's own status"},
                        {1, "without COMMAND: the manager ended by itself"},
                        {hl::cli::kExitUsage, "usage error"},
                        {kCantStart, "the session could not start"},
                        {kCommandNotRun, "COMMAND could not be run"}});
    CLI::App& app = tool.App();
    SessionSetup setup = SessionSetup::Beside(SessionSetup::OwnDirectory());
    std::string language;
    bool privateDisplay = false;
    bool quiet = false;
    std::vector<std::string> command;
    app.add_option("--program", setup.program, "the managed program")->capture_default_str();
    app.add_option("--name", setup.name, "the name the manager gives it")->capture_default_str();
    app.add_option("--language", language, "locale/language to set before the program starts (en-US, ru-RU, ...)");
    app.add_option("--directory", setup.directory,
                   "the session's directory (its runtime directory is DIR/rt), kept at the end; "
                   "default: a private one, removed");
    app.add_flag("--xvfb", privateDisplay, "a private Xvfb even when DISPLAY is set");
    app.add_flag("-q,--quiet", quiet, "do not copy the log to standard error");
    app.add_option("command", command, "COMMAND [ARG...], after --")->expected(-1);
    app.positionals_at_end();
    if (const auto status = tool.Parse(argc, argv)) {
        return *status;
    }

    struct sigaction action {};
    action.sa_handler = OnStopSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);

    // Ended in reverse: the session (the manager, which ends the program, then the settings service),
    // the last lines of the log, the X server.
    std::unique_ptr<XDisplay> display;
    std::jthread follower;
    Session session(setup);
    if (!quiet) {
        follower = std::jthread([path = session.LogPath()](std::stop_token stop) { FollowLog(path, stop); });
    }

    const auto unset = [](const char* name) {
        const char* value = std::getenv(name);
        return value == nullptr || *value == '\0';
    };
    if (privateDisplay || (unset("DISPLAY") && unset("WAYLAND_DISPLAY"))) {
        std::string error;
        display = XDisplay::StartXvfb(session.Directory() + "/xvfb.log", error);
        if (!display) {
            return Fail(error);
        }
        setenv("DISPLAY", display->Name().c_str(), 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
    }
    if (!session.StartSettings()) {
        return Fail("hl-settingsd did not start (" + setup.settingsd + ")");
    }
    if (!language.empty() &&
        session.SettingsTool({"--service", Session::kSettingsService, "set", "locale/language", language}) != 0) {
        return Fail("the language '" + language + "' could not be set");
    }
    if (!session.Start()) {
        return Fail("the program did not report ReadyToShowUI (" + setup.program + ", log " + session.LogPath() +
                    ")");
    }

    int status = 0;
    if (!command.empty()) {
        ChildProcess child(command, SpawnOptions{""});
        if (!child.Started()) {
            std::cerr << "hl-session: " << child.Error() << '\n';
            status = kCommandNotRun;
        } else {
            // A Ctrl-C reaches the command too; the session ends once the command has.
            std::optional<int> ended;
            while (!(ended = child.Wait(50ms))) {
            }
            status = *ended;
        }
    } else {
        std::cout << "DISPLAY=" << std::getenv("DISPLAY") << " HL_RUNTIME_DIR=" << session.RuntimeDirectory()
                  << std::endl;
        while (g_stopSignal == 0 && session.ManagerRunning()) {
            std::this_thread::sleep_for(50ms);
        }
        status = g_stopSignal != 0 ? 0 : 1;
    }
    session.Stop();
    return status;
}
