// Makes and starts the connection manager of a component's server channels.
// Thread: any. The caller owns the result; destroying it stops the manager and closes the channels.
#pragma once

#include <memory>

#include <platform/ipc_dispatcher/connection_manager.h>

namespace shared::ipc_dispatcher {

std::unique_ptr<hos::ipc::ConnectionManager> CreateIpcConnectionManager(
    hos::ipc::ConnectionManager::Config config);

}  // namespace shared::ipc_dispatcher
