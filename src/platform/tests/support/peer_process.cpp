#include "support/peer_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

namespace hos::platform::testing {

std::unique_ptr<PeerProcess> PeerProcess::Start(std::vector<std::string> arguments) {
    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0) {
        return nullptr;
    }
    std::vector<char*> argv;
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    std::unique_ptr<PeerProcess> peer(new PeerProcess());
    peer->m_pid = ::fork();
    if (peer->m_pid == 0) {
        ::dup2(pipeFds[1], STDOUT_FILENO);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(pipeFds[1]);
    peer->m_output = pipeFds[0];
    if (peer->m_pid < 0 || !peer->WaitForLine("ready", std::chrono::seconds(20))) {
        return nullptr;
    }
    return peer;
}

PeerProcess::~PeerProcess() {
    Kill();
    ::close(m_output);
}

bool PeerProcess::WaitForLine(const std::string& line, std::chrono::milliseconds timeout) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        const std::optional<std::string> next = ReadLine(std::max(left, std::chrono::milliseconds(0)));
        if (!next) {
            return false;
        }
        if (*next == line) {
            return true;
        }
    }
}

std::optional<std::string> PeerProcess::ReadLine(std::chrono::milliseconds timeout) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        const auto newline = m_pending.find('\n');
        if (newline != std::string::npos) {
            std::string line = m_pending.substr(0, newline);
            m_pending.erase(0, newline + 1);
            return line;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        pollfd waiting{m_output, POLLIN, 0};
        char chunk[256];
        ssize_t got = 0;
        if (left.count() <= 0 || ::poll(&waiting, 1, static_cast<int>(left.count())) <= 0 ||
            (got = ::read(m_output, chunk, sizeof(chunk))) <= 0) {
            return std::nullopt;
        }
        m_pending.append(chunk, static_cast<size_t>(got));
    }
}

void PeerProcess::Kill() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }
}

}  // namespace hos::platform::testing
