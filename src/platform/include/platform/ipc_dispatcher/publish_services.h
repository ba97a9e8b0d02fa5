// Makes services known to clients through the service registry of the runtime directory.
//
// Each pair is {service name, endpoint name}: the service name is published as a type whose server
// is the endpoint name (the name given to ServiceLocatorRegister, e.g. "accessArbiter_id") and whose
// endpoint to resolve there is the service name itself, so FindConnectionTargetForType(service name)
// answers {server = endpoint name, service = service name}. An entry already there is replaced.
// Returns 0, or the code of the first pair that could not be published (each failure is logged and
// the other pairs are still published). Thread: any.
#pragma once

#include <utility>
#include <vector>

namespace shared::ipc_dispatcher {

int PublishServices(std::vector<std::pair<const char*, const char*>> services);

}  // namespace shared::ipc_dispatcher
