// What a component hands to the facade factory: the services to publish ({service name, endpoint
// name} pairs), the base interface id, the connection manager's configuration and the server
// channel's handle. Plain record.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <platform/ipc_dispatcher/connection_manager.h>

namespace shared::ipc_dispatcher {

struct DispatcherContext {
    std::vector<std::pair<const char*, const char*>> services;
    std::uint32_t riid = 0;
    hos::ipc::ConnectionManager::Config config;
    std::uint32_t handle = 0xFFFFFFFFu;
};

}  // namespace shared::ipc_dispatcher
