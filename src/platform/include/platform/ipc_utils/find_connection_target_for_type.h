// Looks up where an interface type is served, in the service registry of the runtime directory.
//
// The answer comes at once, found or not found: the lookup never waits for a publisher. The
// second argument (callers pass 0xffffffff, the platform's "no limit") is accepted for the
// platform's signature and not used for waiting. An invalid type name gives not found and a log
// line. Thread: safe from any thread.
#pragma once

#include <platform/ipc_utils/connection_target.h>

namespace shared::ipc_utils {

ConnectionTarget FindConnectionTargetForType(const char* type, unsigned int timeoutMs);

}  // namespace shared::ipc_utils
