#pragma once
// How a test peer serves: each peer is a real process that serves generated stubs through the IPC
// runtime's serving host until it is killed.
//
//   hosipc::server::ComponentTree tree("hl.app_manager.TestManager");
//   tree.Serve<ApplicationWatchdog>(1, ..., &watchdog);
//   return hl_test::ServeForever(std::move(tree), "name");
//
// Single-threaded: the loop runs on the calling thread.

#include <ipc_runtime/server/serving_host.h>

namespace hl_test {

// Sets the server up, prints "ready" on stdout and serves every request until the process is
// killed. Returns 1, with a line on stderr, only when the server can't be set up.
int ServeForever(hosipc::server::ComponentTree tree, const char* serverName);

}  // namespace hl_test
