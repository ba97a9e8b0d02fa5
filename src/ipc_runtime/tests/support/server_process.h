#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

namespace ipc_runtime_test {

// A server program started as a process of its own (fork and exec) that announces itself with a
// "ready" line on stdout. The destructor kills and reaps it.
class ServerProcess {
public:
    // Starts program with one argument and waits (at most 20 s) for "ready"; null if it doesn't come.
    static std::unique_ptr<ServerProcess> Start(const std::string& program, const std::string& argument);

    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    // Ends the process with SIGKILL and reaps it.
    void Kill();

private:
    ServerProcess(pid_t pid, int output) : m_pid(pid), m_output(output) {}

    pid_t m_pid;
    int m_output;
};

// A runtime directory of the hosted platform for one test: a fresh directory set as HL_RUNTIME_DIR
// for this process and the servers it starts; the previous value comes back at the end.
class ScopedRuntimeDirectory {
public:
    ScopedRuntimeDirectory();
    ~ScopedRuntimeDirectory();
    ScopedRuntimeDirectory(const ScopedRuntimeDirectory&) = delete;
    ScopedRuntimeDirectory& operator=(const ScopedRuntimeDirectory&) = delete;

private:
    std::string m_previous;
    bool m_hadPrevious = false;
    std::string m_path;
};

}  // namespace ipc_runtime_test
