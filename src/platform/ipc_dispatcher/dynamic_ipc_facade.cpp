#include <platform/ipc_dispatcher/dynamic_ipc_facade.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>

namespace shared::ipc_dispatcher {

DynamicIpcFacade::DynamicIpcFacade(std::unique_ptr<hos::entity::IComponentDispatcher> dispatcher,
                                   std::unique_ptr<hos::ipc::ConnectionManager> connectionManager)
    : m_dispatcher(std::move(dispatcher)), m_connectionManager(std::move(connectionManager)) {
    HCA_CHECK(m_dispatcher != nullptr) << "Component dispatcher is nullptr";
    const std::int32_t rc = m_dispatcher->Start();
    if (rc < 0) {
        HL_LOG(hos::logger::LogLevel::Error, "DynamicIpcFacade: the dispatcher did not start: {:#x}",
               static_cast<std::uint32_t>(rc));
    }
}

}  // namespace shared::ipc_dispatcher
