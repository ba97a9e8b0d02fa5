#include "settings_service.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <vector>

extern char** environ;

namespace access_arbiter::bench {

SettingsService::SettingsService(std::string settingsd) : m_settingsd(std::move(settingsd)) {}

SettingsService::~SettingsService() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGTERM);
        ::waitpid(m_pid, nullptr, 0);
    }
}

bool SettingsService::Start(std::chrono::milliseconds limit, std::string& error) {
    int pipeEnds[2];
    if (::pipe2(pipeEnds, O_CLOEXEC) != 0) {
        error = std::string("pipe: ") + std::strerror(errno);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], 1);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    std::vector<std::string> text{"hl-settingsd", "hl.settings_manager.MSmgr"};
    std::vector<char*> argv{text[0].data(), text[1].data(), nullptr};
    const int spawned = ::posix_spawn(&m_pid, m_settingsd.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeEnds[1]);
    if (spawned != 0) {
        ::close(pipeEnds[0]);
        m_pid = 0;
        error = "can't start " + m_settingsd + ": " + std::strerror(spawned);
        return false;
    }
    // Only its first line is read; the service writes nothing more on standard output.
    std::string output;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (output.find("ready\n") == std::string::npos) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now())
                .count();
        pollfd descriptor{pipeEnds[0], POLLIN, 0};
        char buffer[256];
        ssize_t got = 0;
        if (left <= 0 || ::poll(&descriptor, 1, static_cast<int>(left)) <= 0 ||
            (got = ::read(pipeEnds[0], buffer, sizeof buffer)) <= 0) {
            ::close(pipeEnds[0]);
            error = m_settingsd + " did not report ready";
            return false;
        }
        output.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(pipeEnds[0]);
    return true;
}

}  // namespace access_arbiter::bench
