#pragma once
// The commands of hl-settings, one file each. Each takes the parsed command line and the (not yet
// opened) connection to the service, checks its arguments first, so that a usage error needs no
// service, then opens the connection and returns the exit code (core/exit_code.h). Main thread only.

#include "core/invocation.h"
#include "core/service_connection.h"

namespace hl_settings {

int RunGet(const Invocation& invocation, ServiceConnection& connection);
int RunSet(const Invocation& invocation, ServiceConnection& connection);
int RunDelete(const Invocation& invocation, ServiceConnection& connection);
int RunTree(const Invocation& invocation, ServiceConnection& connection);
int RunMonitor(const Invocation& invocation, ServiceConnection& connection);

}  // namespace hl_settings
