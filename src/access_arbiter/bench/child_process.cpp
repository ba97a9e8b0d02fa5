#include "child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

extern char** environ;

namespace access_arbiter::bench {

bool SpawnChild(const std::string& program, std::vector<std::string> arguments, ChildOutput output,
                pid_t& pid, int& readEnd, std::string& error) {
    int pipeEnds[2] = {-1, -1};
    if (output != ChildOutput::kNone && ::pipe2(pipeEnds, O_CLOEXEC) != 0) {
        error = std::string("pipe: ") + std::strerror(errno);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (output == ChildOutput::kNone) {
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    } else {
        posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], 1);
    }
    if (output == ChildOutput::kStdoutAndStderr) {
        posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], 2);
    } else {
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    }
    std::vector<char*> argv;
    for (std::string& part : arguments) {
        argv.push_back(part.data());
    }
    argv.push_back(nullptr);
    const int spawned = ::posix_spawnp(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (pipeEnds[1] >= 0) {
        ::close(pipeEnds[1]);
    }
    if (spawned != 0) {
        if (pipeEnds[0] >= 0) {
            ::close(pipeEnds[0]);
        }
        pid = 0;
        error = "can't start " + program + ": " + std::strerror(spawned);
        return false;
    }
    readEnd = pipeEnds[0];
    return true;
}

}  // namespace access_arbiter::bench
