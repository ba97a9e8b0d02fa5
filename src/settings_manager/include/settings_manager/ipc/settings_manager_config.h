#pragma once
// How a client reaches a settings service. The texts are not owned: they must live as long as the
// call that takes the config.

#include <cstdint>

namespace settings_manager::ipc {

// Found through the connection manager, by service name ("hl.settings_manager.MSmgr", ...).
struct SettingsManagerCmConfig {
    const char* serviceName = nullptr;
    // How long one connect may take, in milliseconds; kNoTimeout means no limit (and logs as 0).
    std::uint32_t timeoutMs = 0;

    static constexpr std::uint32_t kNoTimeout = 0xFFFFFFFFu;
};

// Named in the static configuration of the service locator.
struct SettingsManagerConfig {
    // Connection that carries update events; also the key of the callback context.
    const char* callbackConnection = nullptr;
    // Connection to the service, and the interface names of NkISM and NkISMReg on it.
    const char* connection = nullptr;
    const char* nkIsmInterface = nullptr;
    const char* nkIsmRegInterface = nullptr;
    // Interface name of NkISMCbk on the callback connection.
    const char* nkIsmCbkInterface = nullptr;
};

}  // namespace settings_manager::ipc
