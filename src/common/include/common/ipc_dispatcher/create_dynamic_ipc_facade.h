#pragma once

// Builds a component's IPC facade: the connection manager over the context's channels, the
// published services, and the started dispatcher thread over `dispatchers` (500 ms receive timeout).
// Thread: any; the result owns both parts (see DynamicIpcFacade for their teardown order).

#include <common/hos_entity/component_code_gen_dispatcher.h>
#include <platform/hos_entity/interface_dispatcher.h>
#include <platform/ipc_dispatcher/create_ipc_connection_manager.h>
#include <platform/ipc_dispatcher/dispatcher_context.h>
#include <platform/ipc_dispatcher/dynamic_ipc_facade.h>
#include <platform/ipc_dispatcher/publish_services.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace shared::ipc_dispatcher {

inline constexpr std::uint32_t kDispatcherReceiveTimeoutMs = 500;

template <typename Request, typename Response, unsigned A, unsigned B>
std::unique_ptr<DynamicIpcFacade> CreateDynamicIpcFacade(
    std::vector<hos::entity::InterfaceDispatcher>&& dispatchers, DispatcherContext& context) {
    auto connectionManager = CreateIpcConnectionManager(context.config);
    PublishServices(context.services);
    auto dispatcher = std::make_unique<hos::entity::ComponentCodeGenDispatcher<Request, Response, A, B>>(
        std::move(dispatchers), static_cast<std::uint16_t>(context.riid), context.handle,
        kDispatcherReceiveTimeoutMs);
    return std::make_unique<DynamicIpcFacade>(std::move(dispatcher), std::move(connectionManager));
}

}  // namespace shared::ipc_dispatcher
