// The test application manager as a real process (fork and exec): its standard input takes commands,
// its standard output is read line by line and kept, so a test can check every request it served.
// The destructor kills and reaps it. One thread.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace app_manager::testing {

class ManagerProcess {
public:
    // Starts `arguments` (the program first) and waits for its "ready" line; null if it doesn't come.
    static std::unique_ptr<ManagerProcess> Start(std::vector<std::string> arguments);
    ~ManagerProcess();

    ManagerProcess(const ManagerProcess&) = delete;
    ManagerProcess& operator=(const ManagerProcess&) = delete;

    // Waits for a line equal to `line`, keeping every line read; false on end of output or timeout.
    bool WaitForLine(const std::string& line, std::chrono::milliseconds timeout);
    // Reads whatever arrives within `quiet` and returns every line since start but "ready".
    std::vector<std::string> Lines(std::chrono::milliseconds quiet);
    // Writes one line to the process's standard input.
    void Send(const std::string& line);
    void Kill();

private:
    ManagerProcess() = default;
    bool ReadSome(std::chrono::milliseconds timeout);

    pid_t m_pid = -1;
    int m_input = -1;
    int m_output = -1;
    std::string m_pending;
    std::vector<std::string> m_lines;
    std::size_t m_checked = 0;
};

}  // namespace app_manager::testing
