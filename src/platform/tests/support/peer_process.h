// A server program started as a real process (fork and exec) that prints "ready" once it serves;
// its standard output is readable line by line. The destructor kills and reaps it.
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

    // Waits for a line equal to `line`; false on end of output or after `timeout`.
    bool WaitForLine(const std::string& line, std::chrono::milliseconds timeout);
    // The next line of its output; none on end of output or after `timeout`.
    std::optional<std::string> ReadLine(std::chrono::milliseconds timeout);
    // Ends the process with SIGKILL and reaps it.
    void Kill();

private:
    PeerProcess() = default;

    pid_t m_pid = -1;
    int m_output = -1;
    std::string m_pending;
};

}  // namespace hos::platform::testing
