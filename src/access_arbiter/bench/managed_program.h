// The program under measurement as a session runs it: `hl-appmgr run --name NAME --restart no --
// PROGRAM` in a process of its own, its standard error (the manager's log and the program's) read
// line by line on a thread of this object. From the manager's lines "NAME[PID]: started" and
// "NAME[PID]: ReadyToShowUI" it learns the program's pid and the time from the start (the manager's
// fork) to ReadyToShowUI, both by the manager's own log time stamps.
//
// Thread: Start, WaitReady, Stop from one thread; the reader thread only fills the fields under the
// mutex. The destructor stops the manager (and so the program) when Stop was not called.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace access_arbiter::bench {

class ManagedProgram {
public:
    // `log`, when not null, receives every line read (the caller keeps it open while this lives).
    ManagedProgram(std::string appmgr, std::string program, std::string name, std::FILE* log);
    ~ManagedProgram();
    ManagedProgram(const ManagedProgram&) = delete;
    ManagedProgram& operator=(const ManagedProgram&) = delete;

    // Starts the manager; false (with `error`) when it can't be spawned.
    bool Start(std::string& error);
    // Waits for ReadyToShowUI; the start-to-ready time in microseconds, or empty when the manager
    // ended or the time ran out first.
    std::optional<double> WaitReady(std::chrono::milliseconds limit);
    // The program's pid once the manager logged its start, otherwise 0.
    pid_t ProgramPid();
    // SIGTERM to the manager, which ends the program; waits for the manager to exit.
    void Stop();

private:
    void ReadLines(int descriptor);
    void OnLine(const std::string& line);

    const std::string m_appmgr;
    const std::string m_program;
    const std::string m_name;
    std::FILE* const m_log;

    pid_t m_manager = 0;
    std::thread m_reader;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    pid_t m_programPid = 0;
    std::optional<std::int64_t> m_startedUs;
    std::optional<std::int64_t> m_readyUs;
    bool m_ended = false;
};

}  // namespace access_arbiter::bench
