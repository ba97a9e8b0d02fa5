// A server program started as a real process (fork and exec) that prints "ready" once it serves;
// its standard output is read line by line and kept, its standard input takes lines. The destructor
// kills and reaps it. One thread.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace hos::platform::testing {

class PeerProcess {
public:
    // Starts `arguments` (the program first) and waits for its "ready" line; null if it does not come.
    static std::unique_ptr<PeerProcess> Start(std::vector<std::string> arguments);
    ~PeerProcess();

    PeerProcess(const PeerProcess&) = delete;
    PeerProcess& operator=(const PeerProcess&) = delete;

    // Waits for a line equal to `line` past the ones already waited for or read; false on end of output
    // or after `timeout`.
    bool WaitForLine(const std::string& line, std::chrono::milliseconds timeout);
    // The next line of its output; none on end of output or after `timeout`.
    std::optional<std::string> ReadLine(std::chrono::milliseconds timeout);
    // Reads whatever arrives within `quiet` and returns every line since "ready".
    std::vector<std::string> Lines(std::chrono::milliseconds quiet);
    // Writes one line to its standard input.
    void Send(const std::string& line);
    // Ends the process with SIGKILL and reaps it.
    void Kill();
    // Its process id, for a test that stops and continues it.
    pid_t Pid() const { return m_pid; }

private:
    PeerProcess() = default;
    bool ReadSome(std::chrono::milliseconds timeout);

    pid_t m_pid = -1;
    int m_input = -1;
    int m_output = -1;
    std::string m_pending;
    std::vector<std::string> m_lines;
    std::size_t m_next = 0;
};

}  // namespace hos::platform::testing
