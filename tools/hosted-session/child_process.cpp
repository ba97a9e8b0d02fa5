#include <hosted_session/child_process.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

extern char** environ;

namespace hl::hosted_session {

namespace {
using namespace std::chrono_literals;
}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const std::string& outputPath)
    : ChildProcess(arguments, SpawnOptions{outputPath}) {}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const SpawnOptions& options)
    : m_outputPath(options.output) {
    if (arguments.empty()) {
        m_error = "no program to start";
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!options.output.empty()) {
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, options.output.c_str(),
                                         O_WRONLY | O_CREAT | O_APPEND, 0600);
        posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    }
    if (options.descriptor3 >= 0) {
        posix_spawn_file_actions_adddup2(&actions, options.descriptor3, 3);
    }
    std::vector<char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    if (options.ownProcessGroup) {
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
        posix_spawnattr_setpgroup(&attributes, 0);
    }
    const int spawned = posix_spawnp(&m_pid, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        m_pid = -1;
        m_error = "can't start " + arguments[0] + ": " + std::strerror(spawned);
        return;
    }
    // Readable once the process has ended: Wait sleeps on it instead of polling.
    m_endDescriptor = static_cast<int>(::syscall(SYS_pidfd_open, m_pid, 0));
}

ChildProcess::~ChildProcess() {
    if (Running()) {
        kill(m_pid, SIGKILL);
        Wait(10s);
    }
    if (m_endDescriptor >= 0) {
        close(m_endDescriptor);
    }
}

std::optional<int> ChildProcess::Wait(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!m_status && m_pid > 0) {
        int status = 0;
        if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        } else if (std::chrono::steady_clock::now() >= deadline) {
            break;
        } else if (m_endDescriptor >= 0) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            pollfd end{m_endDescriptor, POLLIN, 0};
            poll(&end, 1, static_cast<int>(left.count()));
        } else {
            std::this_thread::sleep_for(10ms);
        }
    }
    return m_status;
}

bool ChildProcess::Running() {
    return m_pid > 0 && !Wait(0ms);
}

void ChildProcess::Signal(int signalNumber) const {
    if (m_pid > 0 && !m_status) {
        kill(m_pid, signalNumber);
    }
}

int ChildProcess::Stop(std::chrono::milliseconds grace) {
    Signal(SIGTERM);
    if (const auto status = Wait(grace)) {
        return *status;
    }
    Signal(SIGKILL);
    return Wait(10s).value_or(-1);
}

std::string ChildProcess::Output() const {
    std::ifstream in(m_outputPath);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace hl::hosted_session
