// Holds a running component dispatcher together with the connection manager of its channels.
//
// The constructor takes both over and starts the dispatcher; nothing else starts or stops it.
// Destruction runs the connection manager's destructor first (which closes the channels), then the
// dispatcher's (which stops its thread); the member order below is what guarantees this.
// Thread: made and destroyed on one thread; the dispatcher runs its own.
#pragma once

#include <memory>

#include <platform/hos_entity/i_component_dispatcher.h>
#include <platform/ipc_dispatcher/connection_manager.h>

namespace shared::ipc_dispatcher {

class DynamicIpcFacade {
public:
    // Throws hca::CheckFailedException "Component dispatcher is nullptr" for a null dispatcher.
    // A failing Start is logged; the facade is made all the same.
    DynamicIpcFacade(std::unique_ptr<hos::entity::IComponentDispatcher> dispatcher,
                     std::unique_ptr<hos::ipc::ConnectionManager> connectionManager);

    DynamicIpcFacade(const DynamicIpcFacade&) = delete;
    DynamicIpcFacade& operator=(const DynamicIpcFacade&) = delete;

private:
    std::unique_ptr<hos::entity::IComponentDispatcher> m_dispatcher;
    std::unique_ptr<hos::ipc::ConnectionManager> m_connectionManager;
};

}  // namespace shared::ipc_dispatcher
