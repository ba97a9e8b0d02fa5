#include "one_shot_dialog.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstring>
#include <vector>

extern char** environ;

namespace access_arbiter::bench {

OneShotDialog::OneShotDialog(std::string zenity) : m_zenity(std::move(zenity)) {}

OneShotDialog::~OneShotDialog() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
}

bool OneShotDialog::Start(std::string& error) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    std::vector<std::string> text{"zenity",  "--question",
                                  "--title", "Connection request",
                                  "--text",  "A user requests access to manage your device"};
    std::vector<char*> argv;
    for (std::string& part : text) {
        argv.push_back(part.data());
    }
    argv.push_back(nullptr);
    const int spawned = ::posix_spawnp(&m_pid, m_zenity.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        m_pid = 0;
        error = "can't start " + m_zenity + ": " + std::strerror(spawned);
        return false;
    }
    return true;
}

std::optional<int> OneShotDialog::WaitExit() {
    int status = 0;
    if (m_pid <= 0 || ::waitpid(m_pid, &status, 0) != m_pid) {
        return std::nullopt;
    }
    m_pid = 0;
    if (!WIFEXITED(status)) {
        return std::nullopt;
    }
    return WEXITSTATUS(status);
}

}  // namespace access_arbiter::bench
