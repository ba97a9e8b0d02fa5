// One published entry of the service registry: an interface type and where it is served.
#pragma once

#include <string>

#include <sys/types.h>

namespace hos::platform {

struct RegistryEntry {
    std::string type;      // the published type, e.g. "hl.access_arbiter.AccessArbiter.accessArbiter"
    std::string server;    // the server name: `server` of KnCmConnect (a ServiceLocatorRegister name)
    std::string endpoint;  // the name a client resolves there: `service` of KnCmConnect
    pid_t pid = 0;         // the publishing process; 0 when unknown
};

}  // namespace hos::platform
