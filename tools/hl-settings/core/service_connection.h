#pragma once
// ServiceConnection is hl-settings' connection to one settings service, by name.
//
// The settings client's own connect waits minutes for a service that isn't there yet (it is meant
// for applications started before their services). A person at a shell wants an answer, so Open
// first asks the platform for the service's NkISM interface itself, again every 50 ms until waitMs
// have passed, and only then creates the client (SettingsManagerProxy, with its callback thread).
// IsThere asks the same once, for a monitor that wants to know whether its service is still up.
//
// Main thread only. The client lives as long as this object; its teardown waits for the callback
// thread's pending Wait to run out (up to 2 s).

#include <settings_manager/i_settings_manager.h>

#include <cstdint>
#include <memory>
#include <string>

namespace hl_settings {

class ServiceConnection {
public:
    ServiceConnection(std::string service, std::uint32_t waitMs);

    // The exit code of the outcome: 0, after which Manager may be used; or 3 with a message written
    // to standard error.
    int Open();

    // The client; Open must have returned 0.
    settings_manager::ISettingsManager& Manager() const { return *m_manager; }

    // True when the service accepts a connection now.
    bool IsThere() const;

    const std::string& Service() const { return m_service; }

private:
    std::string m_service;
    std::uint32_t m_waitMs;
    std::shared_ptr<settings_manager::ISettingsManager> m_manager;
};

}  // namespace hl_settings
