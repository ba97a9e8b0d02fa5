#include "hosted_session.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <thread>

extern char** environ;

namespace access_arbiter::e2e {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

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

namespace {

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

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const std::string& outputPath)
    : m_outputPath(outputPath) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outputPath.c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    std::vector<char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    if (posix_spawn(&m_pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) {
        m_pid = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
}

ChildProcess::~ChildProcess() {
    if (Running()) {
        kill(m_pid, SIGKILL);
        Wait(10s);
    }
}

std::optional<int> ChildProcess::Wait(std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    while (!m_status && m_pid > 0) {
        int status = 0;
        if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        } else if (Clock::now() >= deadline) {
            break;
        } else {
            std::this_thread::sleep_for(20ms);
        }
    }
    return m_status;
}

bool ChildProcess::Running() {
    return m_pid > 0 && !Wait(0ms);
}

void ChildProcess::Signal(int signalNumber) const {
    if (m_pid > 0 && !m_status) {
        kill(m_pid, signalNumber);
    }
}

std::string ChildProcess::Output() const {
    std::ifstream in(m_outputPath);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

bool HostedSession::StartDisplay() {
    static const bool started = [] {
        int fds[2];
        if (pipe(fds) != 0) {
            return false;
        }
        // Xvfb writes its display number to fd 3 once it serves; it lives as long as the test process.
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, fds[1], 3);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        const char* argv[] = {"Xvfb",         "-displayfd", "3",   "-screen", "0",
                              "1280x1024x24", "-nolisten",  "tcp", nullptr};
        static pid_t pid = -1;
        const bool spawned =
            posix_spawnp(&pid, "Xvfb", &actions, nullptr, const_cast<char**>(argv), environ) == 0;
        posix_spawn_file_actions_destroy(&actions);
        close(fds[1]);
        std::string number;
        pollfd entry{fds[0], POLLIN, 0};
        char c = 0;
        while (spawned && poll(&entry, 1, 20000) > 0 && read(fds[0], &c, 1) == 1 && c != '\n') {
            number += c;
        }
        close(fds[0]);
        if (number.empty()) {
            return false;
        }
        std::atexit([] { kill(pid, SIGTERM); });
        setenv("DISPLAY", (":" + number).c_str(), 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        return true;
    }();
    return started;
}

namespace {
pid_t g_windowManager = -1;
pid_t g_replacedWindowManager = -1;
}  // namespace

bool HostedSession::StartWindowManager(bool replace) {
    if (!replace) {
        StopWindowManager();
    }
    std::vector<const char*> argv{"openbox", "--sm-disable"};
    if (replace) {
        argv.push_back("--replace");
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const bool spawned =
        posix_spawnp(&pid, "openbox", &actions, nullptr, const_cast<char**>(argv.data()), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    if (!spawned) {
        return false;
    }
    // The replaced manager ends by itself once the new one has taken over.
    g_replacedWindowManager = replace ? g_windowManager : -1;
    g_windowManager = pid;
    return true;
}

bool HostedSession::WaitForWindowManager() {
    const auto deadline = Clock::now() + 20s;
    // wmctrl -m names the manager only once it has announced itself on the root window.
    while (RunCommand("wmctrl -m 2>/dev/null").find("Openbox") == std::string::npos ||
           (g_replacedWindowManager > 0 && waitpid(g_replacedWindowManager, nullptr, WNOHANG) == 0)) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(20ms);
    }
    g_replacedWindowManager = -1;
    return true;
}

void HostedSession::StopWindowManager() {
    if (g_windowManager > 0) {
        kill(g_windowManager, SIGTERM);
        waitpid(g_windowManager, nullptr, 0);
        g_windowManager = -1;
    }
}

HostedSession::HostedSession() {
    char pattern[] = "/tmp/hl-e2e-session-XXXXXX";
    if (mkdtemp(pattern) != nullptr) {
        m_directory = pattern;
        setenv("HL_RUNTIME_DIR", (m_directory + "/rt").c_str(), 1);
    }
}

HostedSession::~HostedSession() {
    if (m_manager && m_manager->Running()) {
        m_manager->Signal(SIGTERM);
        m_manager->Wait(20s);
    }
    m_manager.reset();
    m_settings.reset();
    if (!m_directory.empty()) {
        std::filesystem::remove_all(m_directory);
    }
}

bool HostedSession::StartSettings(const std::vector<std::string>& options) {
    std::vector<std::string> arguments{HL_SETTINGSD_EXECUTABLE};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back("hl.settings_manager.MSmgr");
    m_settings = std::make_unique<ChildProcess>(arguments, m_directory + "/settingsd");
    const auto deadline = Clock::now() + 60s;
    while (m_settings->Output().find("ready\n") == std::string::npos) {
        if (Clock::now() >= deadline || !m_settings->Running()) {
            return false;
        }
        std::this_thread::sleep_for(50ms);
    }
    return true;
}

int HostedSession::SettingsTool(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{HL_SETTINGS_EXECUTABLE};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ChildProcess tool(command, m_directory + "/hl-settings");
    return tool.Wait(60s).value_or(-1);
}

bool HostedSession::Start(const std::string& unitLines) {
    if (!m_settings && !StartSettings()) {
        return false;
    }
    const std::size_t readyBefore = CountInLog("]: ReadyToShowUI");
    StartManager(unitLines);
    // Start-up under the sanitizers can be slow.
    return WaitForLog("]: ReadyToShowUI", 120s, readyBefore + 1);
}

void HostedSession::StartManager(const std::string& unitLines) {
    const std::string unit = m_directory + "/AccessArbiter.unit";
    std::ofstream(unit) << "name=AccessArbiter\nprogram=" HL_ACCESS_ARBITER_EXECUTABLE "\n" << unitLines;
    m_manager = std::make_unique<ChildProcess>(
        std::vector<std::string>{HL_APPMGR_EXECUTABLE, "run", "--unit", unit}, m_directory + "/session.log");
}

bool HostedSession::Stop() {
    const std::string ended =
        "AccessArbiter[" + std::to_string(ProgramPid()) + "]: exited with status 0 (stopped)";
    m_manager->Signal(SIGTERM);
    return m_manager->Wait(30s) == 0 && CountInLog(ended) == 1;
}

std::string HostedSession::Log() const {
    std::ifstream in(m_directory + "/session.log");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::size_t HostedSession::CountInLog(const std::string& text) const {
    const std::string log = Log();
    std::size_t count = 0;
    for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) {
        ++count;
    }
    return count;
}

bool HostedSession::WaitForLog(const std::string& text, std::chrono::seconds timeout,
                               std::size_t count) const {
    const auto deadline = Clock::now() + timeout;
    while (CountInLog(text) < count) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(50ms);
    }
    return true;
}

pid_t HostedSession::ProgramPid() const {
    static const std::regex started(R"(AccessArbiter\[(\d+)\]: started)");
    pid_t pid = -1;
    const std::string log = Log();
    for (auto it = std::sregex_iterator(log.begin(), log.end(), started); it != std::sregex_iterator();
         ++it) {
        pid = static_cast<pid_t>(std::stol((*it)[1]));
    }
    return pid;
}

std::unique_ptr<ChildProcess> HostedSession::Ask(const std::vector<std::string>& options) {
    std::vector<std::string> arguments{HL_ASK_EXECUTABLE};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return std::make_unique<ChildProcess>(arguments, m_directory + "/ask-" + std::to_string(++m_asks));
}

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
