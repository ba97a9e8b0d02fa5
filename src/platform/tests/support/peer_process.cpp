#include "support/peer_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

namespace hos::platform::testing {

PeerProcess::PeerProcess(std::vector<std::string> arguments) {
    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0) {
        return;
    }
    std::vector<char*> argv;
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    m_pid = ::fork();
    if (m_pid == 0) {
        ::dup2(pipeFds[1], STDOUT_FILENO);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(pipeFds[1]);
    m_output = pipeFds[0];
}

PeerProcess::~PeerProcess() {
    Kill();
    Wait(std::chrono::seconds(10));
    if (m_output >= 0) {
        ::close(m_output);
    }
}

std::unique_ptr<PeerProcess> PeerProcess::StartServer(const std::string& name) {
    auto peer = std::make_unique<PeerProcess>(std::vector<std::string>{HL_PLATFORM_TEST_PEER, "serve", name});
    if (!peer->WaitForLine("ready", std::chrono::seconds(20))) {
        return nullptr;
    }
    return peer;
}

bool PeerProcess::WaitForLine(const std::string& line, std::chrono::milliseconds timeout) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        const auto newline = m_pending.find('\n');
        if (newline != std::string::npos) {
            const std::string got = m_pending.substr(0, newline);
            m_pending.erase(0, newline + 1);
            if (got == line) {
                return true;
            }
            continue;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        if (left.count() <= 0 || m_output < 0) {
            return false;
        }
        pollfd waiting{m_output, POLLIN, 0};
        if (::poll(&waiting, 1, static_cast<int>(left.count())) <= 0) {
            return false;
        }
        char chunk[256];
        const ssize_t got = ::read(m_output, chunk, sizeof(chunk));
        if (got <= 0) {
            return false;
        }
        m_pending.append(chunk, static_cast<size_t>(got));
    }
}

void PeerProcess::Kill() {
    if (m_pid > 0 && !m_reaped) {
        ::kill(m_pid, SIGKILL);
    }
}

int PeerProcess::Wait(std::chrono::milliseconds timeout) {
    if (m_pid <= 0 || m_reaped) {
        return -1;
    }
    const auto until = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        int status = 0;
        const pid_t done = ::waitpid(m_pid, &status, WNOHANG);
        if (done == m_pid) {
            m_reaped = true;
            return status;
        }
        if (done < 0 || std::chrono::steady_clock::now() >= until) {
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

bool PeerProcess::IsRunning() {
    if (m_pid <= 0 || m_reaped) {
        return false;
    }
    int status = 0;
    if (::waitpid(m_pid, &status, WNOHANG) == m_pid) {
        m_reaped = true;
        return false;
    }
    return true;
}

}  // namespace hos::platform::testing
