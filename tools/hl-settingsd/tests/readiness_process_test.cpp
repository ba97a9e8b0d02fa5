// How the real hl-settingsd says that it serves: under systemd READY=1 on the notify socket instead
// of the "ready" line, and the line after all when that socket can't be reached.
#include "support/scoped_runtime_directory.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

extern char** environ;

namespace {

using namespace std::chrono_literals;

// A datagram socket bound at a path, as systemd's notify socket is.
class NotifySocket {
public:
    explicit NotifySocket(const std::string& path) : m_fd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
        EXPECT_EQ(::bind(m_fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0) << path;
    }
    ~NotifySocket() { ::close(m_fd); }
    NotifySocket(const NotifySocket&) = delete;
    NotifySocket& operator=(const NotifySocket&) = delete;

    std::optional<std::string> Receive(std::chrono::milliseconds timeout) {
        pollfd ready{m_fd, POLLIN, 0};
        if (::poll(&ready, 1, static_cast<int>(timeout.count())) != 1) {
            return std::nullopt;
        }
        char buffer[4096];
        const ssize_t got = ::recv(m_fd, buffer, sizeof(buffer), 0);
        return got < 0 ? std::nullopt
                       : std::optional<std::string>(std::string(buffer, static_cast<std::size_t>(got)));
    }

private:
    int m_fd;
};

std::string ReadFile(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// hl-settingsd MSmgr with NOTIFY_SOCKET, standard output and error in files; its pid.
pid_t StartSettingsd(const std::string& notifySocket, const std::string& directory) {
    const std::string command = "NOTIFY_SOCKET='" + notifySocket + "' exec " HL_SETTINGSD " MSmgr >'" +
                                directory + "/out' 2>'" + directory + "/log'";
    const char* argv[] = {"/bin/sh", "-c", command.c_str(), nullptr};
    pid_t pid = -1;
    EXPECT_EQ(::posix_spawn(&pid, "/bin/sh", nullptr, nullptr, const_cast<char* const*>(argv), environ), 0);
    return pid;
}

int ExitCode(pid_t pid) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Readiness, UnderSystemdReadyGoesToTheNotifySocketAndStoppingFollowsSigterm) {
    hos::platform::testing::ScopedRuntimeDirectory directory;
    NotifySocket notify(directory.Path() + "/notify");
    const pid_t settingsd = StartSettingsd(directory.Path() + "/notify", directory.Path());
    ASSERT_GT(settingsd, 0);
    const auto ready = notify.Receive(60s);
    EXPECT_EQ(ready.value_or("(nothing)"), "READY=1\nSTATUS=serving hl.settings_manager.MSmgr");
    EXPECT_NE(ReadFile(directory.Path() + "/log").find("hl.settings_manager.MSmgr: serving"),
              std::string::npos);
    ::kill(settingsd, SIGTERM);
    EXPECT_EQ(notify.Receive(20s).value_or("(nothing)"), "STOPPING=1");
    EXPECT_EQ(ExitCode(settingsd), 0);
    EXPECT_EQ(ReadFile(directory.Path() + "/out"), "") << "the ready line goes to systemd alone";
}

TEST(Readiness, ANotifySocketNobodyListensOnLeavesTheReadyLineAndAWarning) {
    hos::platform::testing::ScopedRuntimeDirectory directory;
    const pid_t settingsd = StartSettingsd(directory.Path() + "/nobody", directory.Path());
    ASSERT_GT(settingsd, 0);
    const bool ready = hos::platform::testing::WaitUntil(
        [&] { return ReadFile(directory.Path() + "/out") == "ready\n"; }, 60s);
    ::kill(settingsd, SIGTERM);
    EXPECT_EQ(ExitCode(settingsd), 0);
    EXPECT_TRUE(ready) << ReadFile(directory.Path() + "/log");
    EXPECT_NE(ReadFile(directory.Path() + "/log").find("WARNING  [SETTINGSD]"), std::string::npos);
    EXPECT_NE(ReadFile(directory.Path() + "/log").find("can't tell systemd that it serves"),
              std::string::npos);
}

}  // namespace
