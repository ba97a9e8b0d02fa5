#include "support/server_process.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace ipc_runtime_test {

namespace {

bool WaitForReady(int output) {
    std::string pending;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < deadline) {
        pollfd descriptor{output, POLLIN, 0};
        if (poll(&descriptor, 1, 100) <= 0) {
            continue;
        }
        char buffer[128];
        const ssize_t count = read(output, buffer, sizeof buffer);
        if (count <= 0) {
            return false;
        }
        pending.append(buffer, static_cast<std::size_t>(count));
        if (pending.find("ready\n") != std::string::npos) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::unique_ptr<ServerProcess> ServerProcess::Start(const std::string& program, const std::string& argument) {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) {
        return nullptr;
    }
    const pid_t pid = fork();
    if (pid < 0) {
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        return nullptr;
    }
    if (pid == 0) {
        dup2(pipeEnds[1], STDOUT_FILENO);
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        execl(program.c_str(), program.c_str(), argument.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(pipeEnds[1]);
    std::unique_ptr<ServerProcess> process(new ServerProcess(pid, pipeEnds[0]));
    if (!WaitForReady(pipeEnds[0])) {
        return nullptr;
    }
    return process;
}

ServerProcess::~ServerProcess() {
    Kill();
    close(m_output);
}

void ServerProcess::Kill() {
    if (m_pid <= 0) {
        return;
    }
    kill(m_pid, SIGKILL);
    int status = 0;
    waitpid(m_pid, &status, 0);
    m_pid = -1;
}

ScopedRuntimeDirectory::ScopedRuntimeDirectory() {
    if (const char* previous = std::getenv("HL_RUNTIME_DIR")) {
        m_previous = previous;
        m_hadPrevious = true;
    }
    std::string base = m_hadPrevious ? m_previous : std::string("/tmp");
    std::filesystem::create_directories(base);
    std::string pattern = base + "/ipc-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
    m_path = pattern;
    setenv("HL_RUNTIME_DIR", m_path.c_str(), 1);
}

ScopedRuntimeDirectory::~ScopedRuntimeDirectory() {
    if (m_hadPrevious) {
        setenv("HL_RUNTIME_DIR", m_previous.c_str(), 1);
    } else {
        unsetenv("HL_RUNTIME_DIR");
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

}  // namespace ipc_runtime_test
