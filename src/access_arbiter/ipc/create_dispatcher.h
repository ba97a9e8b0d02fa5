#pragma once

#include <ipc_runtime/i_dispatcher.h>
#include <platform/ipc_dispatcher/dynamic_ipc_facade.h>

#include <memory>

namespace access_arbiter {

// Puts the decision service on the platform: declares the component tree "hl.vdi.AccessArbiter",
// opens the server channel "accessArbiter_id", publishes "hl.access_arbiter.AccessArbiter.accessArbiter"
// and starts the dispatcher thread over `dispatcher` as interface 1. Null (after a critical log line)
// when the server channel cannot be had; throws hca::CheckResultFailedException when the tree or the
// channel to itself cannot be set up. Called once, on the main thread.
std::unique_ptr<shared::ipc_dispatcher::DynamicIpcFacade> CreateDispatcher(
    std::shared_ptr<hosipc_detail::api_v1::IDispatcher> dispatcher);

}  // namespace access_arbiter
