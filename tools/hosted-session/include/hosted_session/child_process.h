// The one way the hosted session and its harnesses start a process: posix_spawn, with standard input
// from /dev/null and standard output and error appended to one file, or all three inherited.
//
// Thread: one thread per object. The object owns the process: the destructor kills (SIGKILL) and
// reaps one that still runs.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace hl::hosted_session {

struct SpawnOptions {
    // Where standard output and standard error go: a file, created or appended to. Empty: standard
    // input, output and error are the caller's.
    std::string output = "/dev/null";
    // A descriptor of the caller's that the child gets as descriptor 3 (Xvfb's -displayfd); -1: none.
    int descriptor3 = -1;
    // A process group of its own, so that a terminal's Ctrl-C reaches only whoever started it.
    bool ownProcessGroup = false;
};

class ChildProcess {
public:
    // Starts arguments[0] (looked up on PATH when it holds no slash) with `arguments`. Whether it
    // started is Started(); the reason it did not is Error().
    ChildProcess(const std::vector<std::string>& arguments, const SpawnOptions& options);
    // The same with the output in `outputPath`.
    ChildProcess(const std::vector<std::string>& arguments, const std::string& outputPath);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool Started() const { return m_pid > 0; }
    const std::string& Error() const { return m_error; }
    pid_t Pid() const { return m_pid; }
    // The exit status (128 + the signal for a killed one), or nothing while it runs after `timeout`.
    std::optional<int> Wait(std::chrono::milliseconds timeout);
    bool Running();
    // Sends `signalNumber` unless the process has been reaped.
    void Signal(int signalNumber) const;
    // SIGTERM, then SIGKILL when it still runs after `grace`; its status.
    int Stop(std::chrono::milliseconds grace);
    // What it has written so far (the output file's contents).
    std::string Output() const;

private:
    pid_t m_pid = -1;
    int m_endDescriptor = -1;
    std::optional<int> m_status;
    std::string m_outputPath;
    std::string m_error;
};

}  // namespace hl::hosted_session
