// The manager's one event loop (sd-event): what wakes it is an application's end (its pidfd), its
// output (the pipes the supervisor made), SIGTERM or SIGINT, the supervisor's next deadline, the
// WATCHDOG=1 cadence under systemd, and the server thread's eventfd after each request. Nothing
// else: an idle manager sleeps.
//
// A timer that fires more than kStallMs after its time means that the manager itself did not run
// (stopped by a signal or a debugger, a frozen cgroup, starvation); the supervisor then starts every
// watch window again instead of blaming the applications for the pause: their Pings of that time
// may still wait in the sockets. (When the server thread takes those Pings before the timer fires,
// the windows have moved already, and nothing is late.)
//
// SIGTERM or SIGINT stops every application (STOPPING=1 to systemd); Run returns 0 once every one
// has ended and what they wrote has been copied.
//
// Thread: constructed and run on the main thread, with SIGTERM and SIGINT blocked in every thread
// (Block, before any thread starts); Wake from any thread.
#pragma once

#include <systemd/sd-event.h>

#include <chrono>
#include <list>
#include <memory>
#include <string>

#include "supervisor.h"
#include "systemd_notifier.h"

namespace hl_appmgr {

class ManagerLoop {
public:
    static constexpr std::chrono::milliseconds kStallMs{500};
    static constexpr std::size_t kMaxLineBytes = 1024;

    // Blocks SIGTERM and SIGINT for the calling thread and those it starts.
    static void Block();

    ManagerLoop(std::shared_ptr<Supervisor> supervisor, std::shared_ptr<SystemdNotifier> notifier);
    ~ManagerLoop();
    ManagerLoop(const ManagerLoop&) = delete;
    ManagerLoop& operator=(const ManagerLoop&) = delete;

    // False (logged) when the loop can't be set up.
    bool Setup();
    // From any thread: the loop looks at the supervisor again.
    void Wake();
    // Runs until the stop has ended every application; returns the exit code.
    int Run();

private:
    struct Child {
        ManagerLoop* loop;
        pid_t pid;
        int pidfd;
        sd_event_source* source = nullptr;
    };
    struct Output {
        ManagerLoop* loop;
        std::string name;
        int fd;
        int target;  // the manager's descriptor it is copied to
        std::string partial;
        sd_event_source* source = nullptr;
    };

    static int OnSignal(sd_event_source* source, const struct signalfd_siginfo* info, void* data);
    static int OnWake(sd_event_source* source, int fd, uint32_t events, void* data);
    static int OnTimer(sd_event_source* source, uint64_t usec, void* data);
    static int OnKeepAlive(sd_event_source* source, uint64_t usec, void* data);
    static int OnChild(sd_event_source* source, int fd, uint32_t events, void* data);
    static int OnOutput(sd_event_source* source, int fd, uint32_t events, void* data);

    // After every event: watches new processes, rearms the timer, tells systemd, ends the loop
    // when a stop is complete.
    void Settle();
    // Reads what waits in an output pipe; false at its end.
    bool Drain(Output& output);
    void CloseOutput(Output& output);

    std::shared_ptr<Supervisor> m_supervisor;
    std::shared_ptr<SystemdNotifier> m_notifier;
    sd_event* m_event = nullptr;
    sd_event_source* m_timer = nullptr;
    int m_wakeFd = -1;
    bool m_stopping = false;
    std::list<Child> m_children;
    std::list<Output> m_outputs;
};

}  // namespace hl_appmgr
