#include "settings_service.h"

#include "child_process.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace access_arbiter::bench {

SettingsService::SettingsService(std::string settingsd) : m_settingsd(std::move(settingsd)) {}

SettingsService::~SettingsService() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGTERM);
        ::waitpid(m_pid, nullptr, 0);
    }
}

bool SettingsService::Start(std::chrono::milliseconds limit, std::string& error) {
    int readEnd = -1;
    if (!SpawnChild(m_settingsd, {"hl-settingsd", "hl.settings_manager.MSmgr"}, ChildOutput::kStdout, m_pid,
                    readEnd, error)) {
        return false;
    }
    // Only its first line is read; the service writes nothing more on standard output.
    std::string output;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (output.find("ready\n") == std::string::npos) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now())
                .count();
        pollfd descriptor{readEnd, POLLIN, 0};
        char buffer[256];
        ssize_t got = 0;
        if (left <= 0 || ::poll(&descriptor, 1, static_cast<int>(left)) <= 0 ||
            (got = ::read(readEnd, buffer, sizeof buffer)) <= 0) {
            ::close(readEnd);
            error = m_settingsd + " did not report ready";
            return false;
        }
        output.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(readEnd);
    return true;
}

}  // namespace access_arbiter::bench
