// hl-ipc list: the registry's entries and the server sockets of the runtime directory.
#include <signal.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <platform/i_service_registry.h>
#include <platform/kn_channel.h>
#include <platform/nk_message.h>
#include <platform/runtime_directory.h>
#include <platform/service_locator.h>

#include <nlohmann/json.hpp>

#include "commands.h"

namespace hl_ipc {
namespace {

constexpr const char* kDescription =
    "Shows what is published in the runtime directory: each type with the server and endpoint that\n"
    "serve it and the publishing process, and each server socket with whether a server answers on it\n"
    "(\"live\") or its owner has gone (\"stale\").";

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

struct Listing {
    std::string root;
    std::vector<hos::platform::RegistryEntry> entries;
    std::vector<std::string> servers;
};

void PrintText(const Listing& listing) {
    std::printf("runtime directory: %s\n", listing.root.c_str());
    std::printf("\npublished types (%zu):\n", listing.entries.size());
    for (const auto& entry : listing.entries) {
        std::printf("  %s -> server %s, endpoint %s, pid %d%s\n", entry.type.c_str(), entry.server.c_str(),
                    entry.endpoint.c_str(), static_cast<int>(entry.pid),
                    IsProcessAlive(entry.pid) ? "" : " (gone)");
    }
    std::printf("\nservers (%zu):\n", listing.servers.size());
    for (const auto& server : listing.servers) {
        std::printf("  %s %s\n", server.c_str(), IsLive(server) ? "live" : "stale");
    }
}

void PrintJson(const Listing& listing) {
    nlohmann::json types = nlohmann::json::array();
    for (const auto& entry : listing.entries) {
        types.push_back({{"type", entry.type}, {"server", entry.server}, {"endpoint", entry.endpoint},
                         {"pid", entry.pid}, {"pid_alive", IsProcessAlive(entry.pid)}});
    }
    nlohmann::json servers = nlohmann::json::array();
    for (const auto& server : listing.servers) {
        servers.push_back({{"name", server}, {"state", IsLive(server) ? "live" : "stale"}});
    }
    const nlohmann::json document{
        {"runtime_directory", listing.root}, {"types", std::move(types)}, {"servers", std::move(servers)}};
    // Names are the registry's bytes; any that are not UTF-8 print as U+FFFD rather than abort.
    std::printf("%s\n", document.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

int RunList(bool json) {
    const auto registry = hos::platform::CreateServiceRegistry();
    const Listing listing{hos::platform::runtime_directory::Path(), registry->List(),
                          registry->ListServers()};
    if (json) {
        PrintJson(listing);
    } else {
        PrintText(listing);
    }
    return kExitOk;
}

}  // namespace

Command AddList(CLI::App& app) {
    auto* list = app.add_subcommand("list", "show the published types and the servers of the runtime directory");
    list->footer(std::string(kDescription) + "\n\n" + app.get_footer());
    auto json = std::make_shared<bool>(false);
    list->add_flag("--json", *json,
                   "one JSON object: {\"runtime_directory\": PATH, \"types\": [{\"type\", \"server\", "
                   "\"endpoint\", \"pid\", \"pid_alive\"}, ...], \"servers\": [{\"name\", \"state\"}, ...]}");
    return {list, [json] { return RunList(*json); }};
}

}  // namespace hl_ipc
