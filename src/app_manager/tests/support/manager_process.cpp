#include "support/manager_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

namespace app_manager::testing {

std::unique_ptr<ManagerProcess> ManagerProcess::Start(std::vector<std::string> arguments) {
    int toChild[2];
    int fromChild[2];
    if (::pipe2(toChild, O_CLOEXEC) != 0) {
        return nullptr;
    }
    if (::pipe2(fromChild, O_CLOEXEC) != 0) {
        ::close(toChild[0]);
        ::close(toChild[1]);
        return nullptr;
    }
    std::vector<char*> argv;
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    std::unique_ptr<ManagerProcess> manager(new ManagerProcess());
    manager->m_pid = ::fork();
    if (manager->m_pid == 0) {
        ::dup2(toChild[0], STDIN_FILENO);
        ::dup2(fromChild[1], STDOUT_FILENO);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(toChild[0]);
    ::close(fromChild[1]);
    manager->m_input = toChild[1];
    manager->m_output = fromChild[0];
    if (manager->m_pid < 0 || !manager->WaitForLine("ready", std::chrono::seconds(20))) {
        return nullptr;
    }
    manager->m_lines.clear();
    manager->m_checked = 0;
    return manager;
}

ManagerProcess::~ManagerProcess() {
    Kill();
    ::close(m_input);
    ::close(m_output);
}

bool ManagerProcess::ReadSome(std::chrono::milliseconds timeout) {
    pollfd waiting{m_output, POLLIN, 0};
    char chunk[512];
    ssize_t got = 0;
    if (::poll(&waiting, 1, static_cast<int>(std::max<long>(0, timeout.count()))) <= 0 ||
        (got = ::read(m_output, chunk, sizeof(chunk))) <= 0) {
        return false;
    }
    m_pending.append(chunk, static_cast<std::size_t>(got));
    for (auto newline = m_pending.find('\n'); newline != std::string::npos; newline = m_pending.find('\n')) {
        m_lines.push_back(m_pending.substr(0, newline));
        m_pending.erase(0, newline + 1);
    }
    return true;
}

bool ManagerProcess::WaitForLine(const std::string& line, std::chrono::milliseconds timeout) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        for (; m_checked < m_lines.size(); ++m_checked) {
            if (m_lines[m_checked] == line) {
                ++m_checked;
                return true;
            }
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !ReadSome(left)) {
            return false;
        }
    }
}

std::vector<std::string> ManagerProcess::Lines(std::chrono::milliseconds quiet) {
    while (ReadSome(quiet)) {
    }
    return m_lines;
}

void ManagerProcess::Send(const std::string& line) {
    const std::string text = line + "\n";
    static_cast<void>(::write(m_input, text.data(), text.size()));
}

void ManagerProcess::Kill() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }
}

}  // namespace app_manager::testing
