// hl-ipc list: the registry's entries and the server sockets of the runtime directory.
#include <signal.h>

#include <cerrno>
#include <cstdio>

#include <platform/i_service_registry.h>
#include <platform/kn_channel.h>
#include <platform/nk_message.h>
#include <platform/runtime_directory.h>
#include <platform/service_locator.h>

#include "commands.h"

namespace hl_ipc {
namespace {

constexpr const char* kUsage =
    "Usage: hl-ipc list\n"
    "\n"
    "Shows what is published in the runtime directory: each type with the server and endpoint\n"
    "that serve it and the publishing process, and each server socket with whether a server\n"
    "answers on it (\"live\") or its owner has gone (\"stale\").\n"
    "\n"
    "Exit codes: 0 listed (also when empty); 1 usage error.\n";

bool IsLive(const std::string& server) {
    const unsigned int handle = ServiceLocatorConnect(server.c_str());
    if (handle == NK_INVALID_HANDLE) {
        return false;
    }
    KnHandleClose(handle);
    return true;
}

bool IsProcessAlive(pid_t pid) {
    return pid > 0 && (::kill(pid, 0) == 0 || errno == EPERM);
}

}  // namespace

int RunList(const std::vector<std::string>& arguments) {
    if (!arguments.empty()) {
        const bool help = arguments[0] == "--help" || arguments[0] == "-h";
        std::fputs(kUsage, help ? stdout : stderr);
        return help ? 0 : 1;
    }
    const auto registry = hos::platform::CreateServiceRegistry();
    std::printf("runtime directory: %s\n", hos::platform::runtime_directory::Path().c_str());
    const auto entries = registry->List();
    std::printf("\npublished types (%zu):\n", entries.size());
    for (const auto& entry : entries) {
        std::printf("  %s -> server %s, endpoint %s, pid %d%s\n", entry.type.c_str(), entry.server.c_str(),
                    entry.endpoint.c_str(), static_cast<int>(entry.pid),
                    IsProcessAlive(entry.pid) ? "" : " (gone)");
    }
    const auto servers = registry->ListServers();
    std::printf("\nservers (%zu):\n", servers.size());
    for (const auto& server : servers) {
        std::printf("  %s %s\n", server.c_str(), IsLive(server) ? "live" : "stale");
    }
    return 0;
}

}  // namespace hl_ipc
