// hl-appmgr's messages to systemd (sd_notify(3)) when it runs as a service of Type=notify: READY=1
// once it serves, STATUS= whenever the summary of its applications changes, WATCHDOG=1 at half of
// WatchdogSec until an application has failed for good, STOPPING=1 when it ends. Without
// NOTIFY_SOCKET every call does nothing.
//
// NOTIFY_SOCKET, WATCHDOG_USEC and WATCHDOG_PID stay in the manager's environment, where sd_notify
// reads them on each call; the applications never get them (ChildEnvironment). A message that can't
// be sent is logged once, at warning level.
//
// Thread: the main thread.
#pragma once

#include <chrono>
#include <string>

namespace hl_appmgr {

class SystemdNotifier {
public:
    using Clock = std::chrono::steady_clock;

    // Reads once whether systemd watches the manager (WATCHDOG_USEC, for this process).
    SystemdNotifier();

    // READY=1 with the first status text.
    void Ready(const std::string& status);
    // STATUS=`status`, unless it is the text sent last.
    void Status(const std::string& status);
    // WATCHDOG=1 when half of the watchdog interval has passed since the last one, unless stopped.
    void KeepAlive(Clock::time_point now);
    // No WATCHDOG=1 from now on, so that systemd restarts the manager when WatchdogSec runs out;
    // the first call logs `reason` at error level. Nothing when systemd does not watch the manager.
    void StopWatchdog(const std::string& reason);
    // STOPPING=1.
    void Stopping();
    // How often KeepAlive has something to send: half of WatchdogSec; 0 when systemd does not watch.
    std::chrono::microseconds KeepAliveEvery() const { return m_watchdogInterval / 2; }

private:
    void Send(const std::string& message);

    std::chrono::microseconds m_watchdogInterval{0};  // 0: not watched
    bool m_watchdogStopped = false;
    Clock::time_point m_lastKeepAlive{};
    std::string m_status;
    bool m_failureLogged = false;
};

}  // namespace hl_appmgr
