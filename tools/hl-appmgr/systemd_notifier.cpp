#include "systemd_notifier.h"

#include <diagnostics/log.h>

#include <systemd/sd-daemon.h>

#include <cstdint>
#include <cstring>

namespace hl_appmgr {

using hos::logger::LogLevel;

SystemdNotifier::SystemdNotifier() {
    std::uint64_t usec = 0;
    if (sd_watchdog_enabled(0, &usec) > 0) {
        m_watchdogInterval = std::chrono::microseconds(usec);
    }
}

void SystemdNotifier::Ready(const std::string& status) {
    m_status = status;
    Send("READY=1\nSTATUS=" + status);
}

void SystemdNotifier::Status(const std::string& status) {
    if (status != m_status) {
        m_status = status;
        Send("STATUS=" + status);
    }
}

void SystemdNotifier::KeepAlive(Clock::time_point now) {
    if (m_watchdogInterval.count() == 0 || m_watchdogStopped ||
        now - m_lastKeepAlive < m_watchdogInterval / 2) {
        return;
    }
    m_lastKeepAlive = now;
    Send("WATCHDOG=1");
}

void SystemdNotifier::StopWatchdog(const std::string& reason) {
    if (m_watchdogInterval.count() == 0 || m_watchdogStopped) {
        return;
    }
    m_watchdogStopped = true;
    HL_LOG(LogLevel::Error, "{}: no more WATCHDOG=1, so that systemd restarts hl-appmgr within {} ms", reason,
           std::chrono::duration_cast<std::chrono::milliseconds>(m_watchdogInterval).count());
}

void SystemdNotifier::Stopping() {
    Send("STOPPING=1\nSTATUS=stopping");
}

void SystemdNotifier::Send(const std::string& message) {
    const int sent = sd_notify(0, message.c_str());
    if (sent < 0 && !m_failureLogged) {
        m_failureLogged = true;
        HL_LOG(LogLevel::Warning, "can't notify systemd ({}); further failures are not logged",
               std::strerror(-sent));
    }
}

}  // namespace hl_appmgr
