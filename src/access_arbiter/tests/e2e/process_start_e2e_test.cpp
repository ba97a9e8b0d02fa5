// Starts the real access_arbiter executable beside the test application manager (a process of its own
// serving the manager's interfaces), each test in a runtime directory of its own, and reads what the
// program writes to its standard error and what the manager hears. A settings service runs beside them
// under the non-persistent service's name, as in a session.

#include "support/manager_process.h"
#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

extern char** environ;

namespace {

using namespace std::chrono_literals;
using app_manager::testing::ManagerProcess;

constexpr const char* kReadyLine = "[main] AccessArbiter is ready";
constexpr const char* kAppNameError = "Failed to get an app name";
constexpr const char* kManagerServer = "hl.test.app_manager";
// Start-up under the sanitizers can be slow.
constexpr auto kStartTimeout = 120s;

// The program with `argv0` as its only argument; its standard error is read as it comes.
class Program {
public:
    explicit Program(const char* argv0) {
        int fds[2] = {-1, -1};
        if (pipe2(fds, O_CLOEXEC) != 0) {
            return;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, fds[1], STDERR_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        char* argv[] = {const_cast<char*>(argv0), nullptr};
        m_started = posix_spawn(&m_pid, HL_ACCESS_ARBITER_EXECUTABLE, &actions, nullptr, argv, environ) == 0;
        posix_spawn_file_actions_destroy(&actions);
        close(fds[1]);
        m_output = fds[0];
    }

    ~Program() {
        if (m_started && !m_exited) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        close(m_output);
    }

    // Reads until `text` has been written, the output ends or the timeout runs out.
    bool ReadUntil(const std::string& text, std::chrono::seconds timeout) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (m_started && m_text.find(text) == std::string::npos &&
               std::chrono::steady_clock::now() < deadline) {
            pollfd entry{m_output, POLLIN, 0};
            char buffer[4096];
            const int ready = poll(&entry, 1, 1000);
            const ssize_t count = ready > 0 ? read(m_output, buffer, sizeof(buffer)) : 0;
            if (ready > 0 && count <= 0) {
                break;
            }
            m_text.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        return m_text.find(text) != std::string::npos;
    }

    // The exit status once the process has ended by itself, or -1 when it hasn't within the timeout.
    int WaitForExit(std::chrono::seconds timeout) {
        ReadUntil("\x01never written", timeout);
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        int status = 0;
        while (std::chrono::steady_clock::now() < deadline) {
            if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
                m_exited = true;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            std::this_thread::sleep_for(20ms);
        }
        return -1;
    }

    bool StillRunning() { return m_started && waitpid(m_pid, nullptr, WNOHANG) == 0; }
    const std::string& Text() const { return m_text; }

private:
    bool m_started = false;
    bool m_exited = false;
    pid_t m_pid = -1;
    int m_output = -1;
    std::string m_text;
};

std::size_t Count(const std::string& text, const std::string& what) {
    std::size_t count = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++count;
    }
    return count;
}

class ProcessStart : public testing::Test {
protected:
    void SetUp() override {
        m_settings = hos::platform::testing::PeerProcess::Start(
            {HL_SETTINGS_TEST_SERVER, "hl.settings_manager.MSmgr"});
        ASSERT_NE(m_settings, nullptr) << "the settings service didn't come up";
    }

    void StartManager(std::vector<std::string> options = {}) {
        std::vector<std::string> arguments{HL_APP_MANAGER_TEST_MANAGER, kManagerServer};
        arguments.insert(arguments.end(), options.begin(), options.end());
        m_manager = ManagerProcess::Start(arguments);
        ASSERT_NE(m_manager, nullptr) << "the test manager didn't come up";
    }

    // Starts the program as argv0 under the manager and checks what both say; `errors` is the number of
    // name errors the program logs.
    void RunUnderManager(const char* argv0, const std::string& appName, std::size_t errors) {
        StartManager();
        Program program(argv0);
        ASSERT_TRUE(program.ReadUntil(kReadyLine, kStartTimeout)) << program.Text();
        EXPECT_EQ(Count(program.Text(), kAppNameError), errors) << program.Text();
        EXPECT_TRUE(errors == 0 || program.Text().find(kAppNameError) < program.Text().find(kReadyLine))
            << "the name comes first";
        for (const std::string call : {"GetUpdateHandle", "ReadyToInitialize", "ReadyToShowUI", "Ping"}) {
            EXPECT_TRUE(m_manager->WaitForLine(call + " " + appName, kStartTimeout)) << call;
        }
        const std::vector<std::string> lines = m_manager->Lines(0ms);
        ASSERT_GE(lines.size(), 4U);
        EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 3),
                  (std::vector<std::string>{"GetUpdateHandle " + appName, "ReadyToInitialize " + appName,
                                            "ReadyToShowUI " + appName}));
        EXPECT_EQ(Count(program.Text(), "start with error"), 0U) << program.Text();
        EXPECT_TRUE(program.StillRunning()) << "after start-up the program waits in its event loop";
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    std::unique_ptr<hos::platform::testing::PeerProcess> m_settings;
    std::unique_ptr<ManagerProcess> m_manager;
};

TEST_F(ProcessStart, EmptyProgramNameIsLoggedOnceAndTheDefaultNameReachesTheManager) {
    RunUnderManager("", "AccessArbiter", 1);
}

TEST_F(ProcessStart, UnderTheManagerTheLifecycleArrivesInOrderAndPingsFollow) {
    RunUnderManager("access_arbiter", "access_arbiter", 0);
}

TEST_F(ProcessStart, WithoutAManagerTheProgramExitsOneAndNothingReachesAManager) {
    // A manager runs, but hasn't published itself: the program can't find it.
    StartManager({"--no-publish"});
    Program program("access_arbiter");
    EXPECT_EQ(program.WaitForExit(kStartTimeout), 1) << program.Text();
    EXPECT_NE(program.Text().find("App manager in null"), std::string::npos) << program.Text();
    EXPECT_NE(program.Text().find("Cannot create application manager proxy"), std::string::npos);
    EXPECT_EQ(program.Text().find(kReadyLine), std::string::npos);
    EXPECT_EQ(program.Text().find("crashed with error"), std::string::npos) << "no status, so no report";
    EXPECT_TRUE(m_manager->Lines(200ms).empty());
}

TEST_F(ProcessStart, FailedStartAfterTheStatusExistsIsReportedToTheManagerAndExitsOne) {
    // The manager holds the decision service's server name, so the program's dispatcher can't be made.
    StartManager({"--hold", "accessArbiter_id"});
    Program program("access_arbiter");
    EXPECT_EQ(program.WaitForExit(kStartTimeout), 1) << program.Text();
    const std::string error = "Failed to start access_arbiter";
    const std::string details = error + ": Unspecified error = 0x8000004b";
    EXPECT_TRUE(
        m_manager->WaitForLine("FinishWithInternalError access_arbiter|" + error + "|" + details, 10s))
        << program.Text();
    EXPECT_NE(program.Text().find("Failed to create ipc dispatcher!"), std::string::npos) << program.Text();
    EXPECT_NE(program.Text().find("App access_arbiter crashed with error: " + error + " - " + details),
              std::string::npos)
        << program.Text();
    const std::vector<std::string> lines = m_manager->Lines(200ms);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "ReadyToShowUI access_arbiter"), 0);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "ReadyToInitialize access_arbiter"), 1);
}

}  // namespace
