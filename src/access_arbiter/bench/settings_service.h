// The session's non-persistent settings service, which the program reads its language from:
// `hl-settingsd hl.settings_manager.MSmgr` in a process of its own, started once for the whole run.
//
// Thread: one thread. Owns the process: the destructor ends it (SIGTERM) and reaps it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>

namespace access_arbiter::bench {

class SettingsService {
public:
    explicit SettingsService(std::string settingsd);
    ~SettingsService();
    SettingsService(const SettingsService&) = delete;
    SettingsService& operator=(const SettingsService&) = delete;

    // Starts the service and waits until it prints "ready"; false with `error` when it can't.
    bool Start(std::chrono::milliseconds limit, std::string& error);

private:
    const std::string m_settingsd;
    pid_t m_pid = 0;
};

}  // namespace access_arbiter::bench
