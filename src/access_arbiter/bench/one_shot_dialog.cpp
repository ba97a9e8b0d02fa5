#include "one_shot_dialog.h"

#include "child_process.h"

#include <signal.h>
#include <sys/wait.h>

namespace access_arbiter::bench {

OneShotDialog::OneShotDialog(std::string zenity) : m_zenity(std::move(zenity)) {}

OneShotDialog::~OneShotDialog() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
}

bool OneShotDialog::Start(std::string& error) {
    int unused = -1;
    return SpawnChild(m_zenity,
                      {"zenity", "--question", "--title", "Connection request", "--text",
                       "A user requests access to manage your device"},
                      ChildOutput::kNone, m_pid, unused, error);
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
