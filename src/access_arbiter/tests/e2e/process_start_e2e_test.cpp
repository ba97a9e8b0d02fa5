// Starts the real access_arbiter executable and reads its standard error up to the line that says
// start-up has finished, then ends it.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>

extern char** environ;

namespace {

constexpr const char* kReadyLine = "[main] AccessArbiter is ready";
constexpr const char* kAppNameError = "Failed to get an app name";

struct Transcript {
    std::string text;
    bool stillRunning = false;
};

// Runs the program with `argv0` as its only argument until it prints the ready line, its standard
// error ends or a generous timeout (start-up under the sanitizers can be slow) runs out.
Transcript RunUntilReady(const char* argv0) {
    Transcript transcript;
    int fds[2] = {-1, -1};
    if (pipe2(fds, O_CLOEXEC) != 0) {
        return transcript;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDERR_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    char* argv[] = {const_cast<char*>(argv0), nullptr};
    pid_t pid = -1;
    const bool started =
        posix_spawn(&pid, HL_ACCESS_ARBITER_EXECUTABLE, &actions, nullptr, argv, environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (started && transcript.text.find(kReadyLine) == std::string::npos &&
           std::chrono::steady_clock::now() < deadline) {
        pollfd entry{fds[0], POLLIN, 0};
        char buffer[4096];
        const int ready = poll(&entry, 1, 1000);
        const ssize_t count = ready > 0 ? read(fds[0], buffer, sizeof(buffer)) : 0;
        if (ready > 0 && count <= 0) {
            break;
        }
        transcript.text.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    close(fds[0]);
    int status = 0;
    transcript.stillRunning = started && waitpid(pid, &status, WNOHANG) == 0;
    if (started) {
        kill(pid, SIGKILL);
        waitpid(pid, &status, 0);
    }
    return transcript;
}

std::size_t Count(const std::string& text, const std::string& what) {
    std::size_t count = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++count;
    }
    return count;
}

TEST(ProcessStart, EmptyProgramNameLogsOneErrorAndStartUpGoesOnToReadyAProperNameNone) {
    for (const auto& [argv0, errors] : {std::pair{"", 1u}, std::pair{"access_arbiter", 0u}}) {
        SCOPED_TRACE(argv0);
        const Transcript run = RunUntilReady(argv0);
        ASSERT_NE(run.text.find(kReadyLine), std::string::npos) << run.text;
        EXPECT_EQ(Count(run.text, kAppNameError), errors) << run.text;
        EXPECT_TRUE(errors == 0 || run.text.find(kAppNameError) < run.text.find(kReadyLine))
            << "the name comes first";
        EXPECT_EQ(Count(run.text, "start with error"), 0u) << run.text;
        EXPECT_TRUE(run.stillRunning) << "after start-up the program waits in its event loop";
    }
}

}  // namespace
