#include "hosted_session.h"

#include <hosted_session/x_display.h>

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>

namespace access_arbiter::e2e {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::unique_ptr<ChildProcess> g_windowManager;
std::unique_ptr<ChildProcess> g_replacedWindowManager;

}  // namespace

std::string RunCommand(const std::string& command) {
    std::string output;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[256];
        while (std::fgets(buffer, sizeof(buffer), pipe) != nullptr) {
            output += buffer;
        }
        pclose(pipe);
    }
    return output;
}

bool HostedSession::StartDisplay() {
    // One server for the whole test process; it ends with the process.
    static const bool started = [] {
        std::string error;
        static std::unique_ptr<hl::hosted_session::XDisplay> display =
            hl::hosted_session::XDisplay::StartXvfb("/dev/null", error);
        if (!display) {
            return false;
        }
        setenv("DISPLAY", display->Name().c_str(), 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        return true;
    }();
    return started;
}

bool HostedSession::StartWindowManager(bool replace) {
    if (!replace) {
        StopWindowManager();
    }
    std::vector<std::string> arguments{"openbox", "--sm-disable"};
    if (replace) {
        arguments.push_back("--replace");
    }
    auto started = std::make_unique<ChildProcess>(arguments, "/dev/null");
    if (!started->Started()) {
        return false;
    }
    // The replaced manager ends by itself once the new one has taken over.
    g_replacedWindowManager = replace ? std::move(g_windowManager) : nullptr;
    g_windowManager = std::move(started);
    return true;
}

bool HostedSession::WaitForWindowManager() {
    const auto deadline = Clock::now() + 20s;
    // wmctrl -m names the manager only once it has announced itself on the root window.
    while (RunCommand("wmctrl -m 2>/dev/null").find("Openbox") == std::string::npos ||
           (g_replacedWindowManager && g_replacedWindowManager->Running())) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(20ms);
    }
    g_replacedWindowManager.reset();
    return true;
}

void HostedSession::StopWindowManager() {
    if (g_windowManager) {
        g_windowManager->Stop(10s);
        g_windowManager.reset();
    }
}

namespace {

hl::hosted_session::SessionSetup Named(const std::string& name) {
    auto setup = hl::hosted_session::SessionSetup::Beside(HL_BIN_DIR);
    setup.name = name;
    return setup;
}

}  // namespace

HostedSession::HostedSession(const std::string& name) : Session(Named(name)) {}

std::vector<std::string> HostedSession::ShownWindows() const {
    return Lines(RunCommand("xdotool search --onlyvisible --name '^AccessArbiter$' 2>/dev/null"));
}

std::string HostedSession::WaitShown(std::chrono::seconds timeout) const {
    const auto deadline = Clock::now() + timeout;
    for (;;) {
        const auto windows = ShownWindows();
        if (windows.size() == 1) {
            return windows.front();
        }
        if (Clock::now() >= deadline) {
            return {};
        }
        std::this_thread::sleep_for(50ms);
    }
}

bool HostedSession::WaitHidden(std::chrono::seconds timeout) const {
    const auto deadline = Clock::now() + timeout;
    while (!ShownWindows().empty()) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(50ms);
    }
    return true;
}

void HostedSession::Click(const std::string& window, int x, int y) const {
    // Let the first frame settle before the click, as a person would.
    std::this_thread::sleep_for(300ms);
    RunCommand("xdotool mousemove --window " + window + " " + std::to_string(x) + " " + std::to_string(y) +
               " click 1");
}

void HostedSession::Keys(const std::string& keys) const {
    RunCommand("xdotool key --delay 50 " + keys);
}

long HostedSession::ProgramRssKiB() const {
    std::ifstream status("/proc/" + std::to_string(ProgramPid()) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::stol(line.substr(6));
        }
    }
    return 0;
}

}  // namespace access_arbiter::e2e
