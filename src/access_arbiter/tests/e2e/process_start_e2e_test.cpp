// Starts the real access_arbiter executable and reads its standard error up to the line that says
// start-up has finished, then ends it with a signal.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

extern char** environ;

namespace {

using namespace std::chrono_literals;

constexpr const char* kReadyLine = "[main] AccessArbiter is ready";
constexpr const char* kAppNameError = "Failed to get an app name";
// Start-up under the sanitizers on a loaded machine can be slow; these only guard against hangs.
constexpr auto kStartTimeout = 120s;
constexpr auto kStopTimeout = 30s;

// A started program whose standard error is read line by line; killed when the object dies.
class RunningProgram {
public:
    explicit RunningProgram(const std::vector<std::string>& arguments) {
        int pipeFds[2] = {-1, -1};
        if (pipe2(pipeFds, O_CLOEXEC) != 0) {
            return;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDERR_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);

        std::vector<char*> argv;
        for (const auto& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);

        if (posix_spawn(&m_pid, HL_ACCESS_ARBITER_EXECUTABLE, &actions, nullptr, argv.data(), environ) != 0) {
            m_pid = -1;
        }
        posix_spawn_file_actions_destroy(&actions);
        close(pipeFds[1]);
        m_stderr = pipeFds[0];
    }

    ~RunningProgram() {
        Stop();
        if (m_stderr >= 0) {
            close(m_stderr);
        }
    }

    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    bool Started() const { return m_pid > 0; }

    // Reads lines until one contains `text`, the stream ends or the timeout runs out. Returns
    // whether the text was seen; every line read so far is in Lines().
    bool ReadUntil(const std::string& text, std::chrono::milliseconds timeout) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (true) {
            if (ContainsLine(text)) {
                return true;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left <= 0ms) {
                return false;
            }
            pollfd entry{m_stderr, POLLIN, 0};
            if (poll(&entry, 1, static_cast<int>(left.count())) <= 0) {
                continue;
            }
            char buffer[4096];
            const ssize_t count = read(m_stderr, buffer, sizeof(buffer));
            if (count <= 0) {
                FlushPartialLine();
                return ContainsLine(text);
            }
            m_partial.append(buffer, static_cast<std::size_t>(count));
            SplitLines();
        }
    }

    const std::vector<std::string>& Lines() const { return m_lines; }

    bool StillRunning() {
        int status = 0;
        return m_pid > 0 && waitpid(m_pid, &status, WNOHANG) == 0;
    }

    // SIGTERM first, SIGKILL if it hasn't ended within kStopTimeout.
    void Stop() {
        if (m_pid <= 0) {
            return;
        }
        kill(m_pid, SIGTERM);
        const auto deadline = std::chrono::steady_clock::now() + kStopTimeout;
        int status = 0;
        while (waitpid(m_pid, &status, WNOHANG) == 0) {
            if (std::chrono::steady_clock::now() > deadline) {
                kill(m_pid, SIGKILL);
                waitpid(m_pid, &status, 0);
                break;
            }
            usleep(20000);
        }
        m_pid = -1;
    }

    std::string Transcript() const {
        std::string all;
        for (const auto& line : m_lines) {
            all += line + "\n";
        }
        return all;
    }

private:
    bool ContainsLine(const std::string& text) const {
        return std::any_of(m_lines.begin(), m_lines.end(),
                           [&text](const std::string& line) { return line.find(text) != std::string::npos; });
    }

    void SplitLines() {
        std::size_t end = 0;
        while ((end = m_partial.find('\n')) != std::string::npos) {
            m_lines.push_back(m_partial.substr(0, end));
            m_partial.erase(0, end + 1);
        }
    }

    void FlushPartialLine() {
        if (!m_partial.empty()) {
            m_lines.push_back(m_partial);
            m_partial.clear();
        }
    }

    pid_t m_pid = -1;
    int m_stderr = -1;
    std::string m_partial;
    std::vector<std::string> m_lines;
};

std::size_t CountLinesWith(const std::vector<std::string>& lines, const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(lines.begin(), lines.end(),
                      [&text](const std::string& line) { return line.find(text) != std::string::npos; }));
}

class ProcessStart : public testing::Test {
protected:
    void SetUp() override {
        // No display in tests; an explicit setting of the caller wins.
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
    }
};

TEST_F(ProcessStart, EmptyProgramNameLogsOneErrorAndStartUpGoesOnToReady) {
    RunningProgram program({""});
    ASSERT_TRUE(program.Started());

    ASSERT_TRUE(program.ReadUntil(kReadyLine, kStartTimeout)) << program.Transcript();
    const auto& lines = program.Lines();
    EXPECT_EQ(CountLinesWith(lines, kAppNameError), 1u) << program.Transcript();
    const auto errorLine = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find(kAppNameError) != std::string::npos;
    });
    const auto readyLine = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find(kReadyLine) != std::string::npos;
    });
    EXPECT_LT(errorLine, readyLine) << "the name is taken before anything else starts";
    EXPECT_EQ(CountLinesWith(lines, "start with error"), 0u) << program.Transcript();
    EXPECT_TRUE(program.StillRunning()) << "after start-up the program waits in its event loop";
}

TEST_F(ProcessStart, ProperProgramNameStartsWithoutAnyErrorLine) {
    RunningProgram program({"access_arbiter"});
    ASSERT_TRUE(program.Started());

    ASSERT_TRUE(program.ReadUntil(kReadyLine, kStartTimeout)) << program.Transcript();
    EXPECT_EQ(CountLinesWith(program.Lines(), kAppNameError), 0u) << program.Transcript();
    EXPECT_EQ(CountLinesWith(program.Lines(), "start with error"), 0u) << program.Transcript();
    EXPECT_TRUE(program.StillRunning());
}

}  // namespace
