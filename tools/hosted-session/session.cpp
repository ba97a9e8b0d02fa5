#include <hosted_session/session.h>

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <thread>

namespace hl::hosted_session {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

std::string Beside(const std::filesystem::path& directory, const std::string& name) {
    const auto path = directory / name;
    return ::access(path.c_str(), X_OK) == 0 ? path.string() : name;
}

}  // namespace

std::string SessionSetup::OwnDirectory() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string(".") : program.parent_path().string();
}

SessionSetup SessionSetup::Beside(const std::string& binDirectory) {
    SessionSetup setup;
    const std::filesystem::path bin(binDirectory);
    setup.appmgr = hosted_session::Beside(bin, setup.appmgr);
    setup.settingsd = hosted_session::Beside(bin, setup.settingsd);
    setup.settings = hosted_session::Beside(bin, setup.settings);
    setup.ask = hosted_session::Beside(bin, setup.ask);
    setup.program = hosted_session::Beside(bin.parent_path() / HL_LIBEXEC_SUBDIR, setup.program);
    const auto fonts = bin.parent_path() / "share" / "halcyra" / "hosted-session" / "fonts.conf";
    if (std::filesystem::exists(fonts)) {
        setup.fontconfig = fonts.string();
    }
    return setup;
}

Session::Session(SessionSetup setup) : m_setup(std::move(setup)) {
    if (m_setup.directory.empty()) {
        const char* temporary = std::getenv("TMPDIR");
        std::string pattern = std::string(temporary != nullptr && *temporary != '\0' ? temporary : "/tmp") +
                              "/hl-session-XXXXXX";
        if (mkdtemp(pattern.data()) != nullptr) {
            m_setup.directory = pattern;
            m_ownDirectory = true;
        }
    } else {
        std::error_code ignored;
        std::filesystem::create_directories(m_setup.directory, ignored);
    }
    setenv("HL_RUNTIME_DIR", RuntimeDirectory().c_str(), 1);
    // The session's services report to the session ("ready", the log), never to a service manager
    // that may have started this process.
    for (const char* name : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"}) {
        unsetenv(name);
    }
    if (!m_setup.fontconfig.empty()) {
        setenv("FONTCONFIG_FILE", m_setup.fontconfig.c_str(), 0);
    }
}

Session::~Session() {
    if (ManagerRunning()) {
        m_manager->Stop(20s);
    }
    m_manager.reset();
    if (m_settings) {
        m_settings->Stop(5s);
    }
    m_settings.reset();
    if (m_ownDirectory) {
        std::error_code ignored;
        std::filesystem::remove_all(m_setup.directory, ignored);
    }
}

bool Session::StartSettings(const std::vector<std::string>& options) {
    std::vector<std::string> arguments{m_setup.settingsd};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(kSettingsService);
    m_settings = std::make_unique<ChildProcess>(
        arguments, SpawnOptions{m_setup.directory + "/settingsd", -1, true});
    const auto deadline = Clock::now() + 60s;
    while (m_settings->Output().find("ready\n") == std::string::npos) {
        if (Clock::now() >= deadline || !m_settings->Running()) {
            return false;
        }
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

int Session::SettingsTool(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{m_setup.settings};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ChildProcess tool(command, m_setup.directory + "/hl-settings");
    return tool.Wait(60s).value_or(-1);
}

void Session::StartManager(const std::string& unitLines) {
    const std::string unit = m_setup.directory + "/" + m_setup.name + ".unit";
    std::ofstream(unit) << "name=" << m_setup.name << "\nprogram=" << m_setup.program << "\n" << unitLines;
    // At debug level the log holds every Ping, which the session's users count.
    m_manager = std::make_unique<ChildProcess>(
        std::vector<std::string>{m_setup.appmgr, "run", "--log-level", "1", "--unit", unit},
        SpawnOptions{LogPath(), -1, true});
}

bool Session::Start(const std::string& unitLines, std::chrono::milliseconds timeout) {
    if (!m_settings && !StartSettings()) {
        return false;
    }
    const std::size_t readyBefore = CountInLog("]: ReadyToShowUI");
    // The manager stays when its program ends before it is ready and is not restarted.
    const std::string notRestarted = m_setup.name + ": not restarted";
    const std::size_t endedBefore = CountInLog(notRestarted);
    StartManager(unitLines);
    const auto deadline = Clock::now() + timeout;
    while (CountInLog("]: ReadyToShowUI") <= readyBefore) {
        if (Clock::now() >= deadline || !m_manager->Running() || CountInLog(notRestarted) > endedBefore) {
            return false;
        }
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

bool Session::Stop() {
    if (!m_manager) {
        return false;
    }
    const std::string ended =
        m_setup.name + "[" + std::to_string(ProgramPid()) + "]: exited with status 0 (stopped)";
    m_manager->Signal(SIGTERM);
    return m_manager->Wait(30s) == 0 && CountInLog(ended) == 1;
}

std::string Session::Log() const {
    std::ifstream in(LogPath());
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::size_t Session::CountInLog(const std::string& text) const {
    const std::string log = Log();
    std::size_t count = 0;
    for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) {
        ++count;
    }
    return count;
}

bool Session::WaitForLog(const std::string& text, std::chrono::milliseconds timeout, std::size_t count) const {
    const auto deadline = Clock::now() + timeout;
    while (CountInLog(text) < count) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

pid_t Session::ProgramPid() const {
    const std::regex started(m_setup.name + R"(\[(\d+)\]: started)");
    pid_t pid = -1;
    const std::string log = Log();
    for (auto it = std::sregex_iterator(log.begin(), log.end(), started); it != std::sregex_iterator(); ++it) {
        pid = static_cast<pid_t>(std::stol((*it)[1]));
    }
    return pid;
}

std::unique_ptr<ChildProcess> Session::Ask(const std::vector<std::string>& options) {
    std::vector<std::string> arguments{m_setup.ask};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return std::make_unique<ChildProcess>(arguments,
                                          m_setup.directory + "/ask-" + std::to_string(++m_asks));
}

}  // namespace hl::hosted_session
