// The service registry of the runtime directory: published type -> server and endpoint.
//
// Purpose: PublishServices and FindConnectionTargetForType stand on it. Entries are files inside
// the runtime directory, so every process of the same user sees them. No operation waits for
// anything: a lookup answers found or not found at once.
// Thread: all operations are safe from any thread and any process. Names (type, server, endpoint)
// are 1 to 200 characters of [A-Za-z0-9._-]; others are refused with NK_EINVAL and a log line.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <platform/registry_entry.h>

namespace hos::platform {

class IServiceRegistry {
public:
    virtual ~IServiceRegistry() = default;

    // Publishes or replaces the entry for entry.type. The pid is this process's when 0.
    // Returns 0, NK_EINVAL, or NK_EFAIL when the directory cannot be written.
    virtual int Publish(const RegistryEntry& entry) = 0;
    // Removes the entry for `type`. Returns 0 or NK_ENOTFOUND.
    virtual int Unpublish(std::string_view type) = 0;
    // The entry for `type`, or nothing.
    virtual std::optional<RegistryEntry> Find(std::string_view type) const = 0;
    // All entries, ordered by type.
    virtual std::vector<RegistryEntry> List() const = 0;
    // Names of the server channels present in the runtime directory, ordered.
    virtual std::vector<std::string> ListServers() const = 0;
};

// A registry over the runtime directory of the environment ($HL_RUNTIME_DIR, else
// $XDG_RUNTIME_DIR/halcyra, else /tmp/halcyra-<uid>), read again on every operation.
std::shared_ptr<IServiceRegistry> CreateServiceRegistry();

// True for a name that the registry and the service locator accept.
bool IsValidPlatformName(std::string_view name);

}  // namespace hos::platform
