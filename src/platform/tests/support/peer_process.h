// A test peer started as a real process (fork and exec), with its standard output readable line
// by line. The destructor kills and reaps it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace hos::platform::testing {

class PeerProcess {
public:
    explicit PeerProcess(std::vector<std::string> arguments);
    ~PeerProcess();

    PeerProcess(const PeerProcess&) = delete;
    PeerProcess& operator=(const PeerProcess&) = delete;

    // Starts `hl_platform_test_peer serve name` and waits for its "ready" line; null if it does
    // not come up.
    static std::unique_ptr<PeerProcess> StartServer(const std::string& name);

    // Waits for a line equal to `line`; false on end of output or after `timeout`.
    bool WaitForLine(const std::string& line, std::chrono::milliseconds timeout);
    void Kill();
    // Waits for the process to end; returns its wait status, or -1.
    int Wait(std::chrono::milliseconds timeout);
    bool IsRunning();
    pid_t Pid() const { return m_pid; }

private:
    pid_t m_pid = -1;
    int m_output = -1;
    std::string m_pending;
    bool m_reaped = false;
};

}  // namespace hos::platform::testing
