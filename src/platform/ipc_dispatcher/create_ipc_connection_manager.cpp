#include <platform/ipc_dispatcher/create_ipc_connection_manager.h>

namespace shared::ipc_dispatcher {

std::unique_ptr<hos::ipc::ConnectionManager> CreateIpcConnectionManager(
    hos::ipc::ConnectionManager::Config config) {
    auto manager = std::make_unique<hos::ipc::ConnectionManager>(std::move(config));
    manager->Start();
    return manager;
}

}  // namespace shared::ipc_dispatcher
