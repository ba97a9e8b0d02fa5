#include "managed_program.h"

#include "child_process.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace access_arbiter::bench {

namespace {

// "2026-11-21T20:58:10.123456Z ..." as microseconds since the epoch; empty for another line.
std::optional<std::int64_t> StampUs(const std::string& line) {
    std::tm utc{};
    int micros = 0;
    if (std::sscanf(line.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%6dZ", &utc.tm_year, &utc.tm_mon, &utc.tm_mday,
                    &utc.tm_hour, &utc.tm_min, &utc.tm_sec, &micros) != 7) {
        return std::nullopt;
    }
    utc.tm_year -= 1900;
    utc.tm_mon -= 1;
    return static_cast<std::int64_t>(::timegm(&utc)) * 1000000 + micros;
}

}  // namespace

ManagedProgram::ManagedProgram(std::string appmgr, std::string program, std::string name, std::FILE* log)
    : m_appmgr(std::move(appmgr)), m_program(std::move(program)), m_name(std::move(name)), m_log(log) {}

ManagedProgram::~ManagedProgram() {
    Stop();
}

bool ManagedProgram::Start(std::string& error) {
    int readEnd = -1;
    if (!SpawnChild(m_appmgr, {"hl-appmgr", "run", "--name", m_name, "--restart", "no", "--", m_program},
                    ChildOutput::kStdoutAndStderr, m_manager, readEnd, error)) {
        return false;
    }
    m_reader = std::thread([this, descriptor = readEnd] { ReadLines(descriptor); });
    return true;
}

void ManagedProgram::ReadLines(int descriptor) {
    std::string pending;
    char buffer[4096];
    for (;;) {
        const ssize_t got = ::read(descriptor, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        pending.append(buffer, static_cast<std::size_t>(got));
        std::size_t end = 0;
        while ((end = pending.find('\n')) != std::string::npos) {
            OnLine(pending.substr(0, end));
            pending.erase(0, end + 1);
        }
    }
    ::close(descriptor);
    std::lock_guard lock(m_mutex);
    m_ended = true;
    m_changed.notify_all();
}

void ManagedProgram::OnLine(const std::string& line) {
    if (m_log != nullptr) {
        std::fprintf(m_log, "%s\n", line.c_str());
    }
    const std::string prefix = m_name + "[";
    const std::size_t at = line.find(prefix);
    if (at == std::string::npos) {
        return;
    }
    const std::size_t close = line.find("]: ", at);
    if (close == std::string::npos) {
        return;
    }
    const std::string call = line.substr(close + 3);
    const auto stamp = StampUs(line);
    std::lock_guard lock(m_mutex);
    if (call.rfind("started ", 0) == 0) {
        m_programPid =
            static_cast<pid_t>(std::stol(line.substr(at + prefix.size(), close - at - prefix.size())));
        m_startedUs = stamp;
    } else if (call == "ReadyToShowUI") {
        m_readyUs = stamp;
    } else {
        return;
    }
    m_changed.notify_all();
}

std::optional<double> ManagedProgram::WaitReady(std::chrono::milliseconds limit) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, limit, [this] { return m_ended || (m_readyUs && m_startedUs); });
    if (!m_readyUs || !m_startedUs) {
        return std::nullopt;
    }
    return static_cast<double>(*m_readyUs - *m_startedUs);
}

pid_t ManagedProgram::ProgramPid() {
    std::lock_guard lock(m_mutex);
    return m_programPid;
}

void ManagedProgram::Stop() {
    if (m_manager > 0) {
        ::kill(m_manager, SIGTERM);
        ::waitpid(m_manager, nullptr, 0);
        m_manager = 0;
    }
    // The pipe closes once the manager and the program it started are gone.
    if (m_reader.joinable()) {
        m_reader.join();
    }
}

}  // namespace access_arbiter::bench
