#include "support/peer_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

namespace hos::platform::testing {

std::unique_ptr<PeerProcess> PeerProcess::Start(std::vector<std::string> arguments) {
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
    std::unique_ptr<PeerProcess> peer(new PeerProcess());
    peer->m_pid = ::fork();
    if (peer->m_pid == 0) {
        ::dup2(toChild[0], STDIN_FILENO);
        ::dup2(fromChild[1], STDOUT_FILENO);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(toChild[0]);
    ::close(fromChild[1]);
    peer->m_input = toChild[1];
    peer->m_output = fromChild[0];
    if (peer->m_pid < 0 || !peer->WaitForLine("ready", std::chrono::seconds(20))) {
        return nullptr;
    }
    // Lines that came in the same read as "ready" are the peer's first words after it: kept.
    peer->m_lines.erase(peer->m_lines.begin(),
                        peer->m_lines.begin() + static_cast<std::ptrdiff_t>(peer->m_next));
    peer->m_next = 0;
    return peer;
}

PeerProcess::~PeerProcess() {
    Kill();
    ::close(m_input);
    ::close(m_output);
}

bool PeerProcess::ReadSome(std::chrono::milliseconds timeout) {
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

std::optional<std::string> PeerProcess::ReadLine(std::chrono::milliseconds timeout) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    while (m_next == m_lines.size()) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !ReadSome(left)) {
            return std::nullopt;
        }
    }
    return m_lines[m_next++];
}

bool PeerProcess::WaitForLine(const std::string& line, std::chrono::milliseconds timeout) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        const std::optional<std::string> next = ReadLine(left);
        if (!next) {
            return false;
        }
        if (*next == line) {
            return true;
        }
    }
}

std::vector<std::string> PeerProcess::Lines(std::chrono::milliseconds quiet) {
    while (ReadSome(quiet)) {
    }
    return m_lines;
}

void PeerProcess::Send(const std::string& line) {
    const std::string text = line + "\n";
    static_cast<void>(::write(m_input, text.data(), text.size()));
}

void PeerProcess::Kill() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }
}

}  // namespace hos::platform::testing
