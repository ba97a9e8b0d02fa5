// IServiceRegistry over files in the runtime directory's "registry" folder, one file per type.
//
// A file holds the lines "server=...", "endpoint=..." and "pid=...". Publishing writes a temporary
// file and renames it, so a reader sees the old entry or the new one, never a half-written one.
// Thread: stateless apart from the environment; safe from any thread and process.
#pragma once

#include <platform/i_service_registry.h>

namespace hos::platform {

class ServiceRegistry final : public IServiceRegistry {
public:
    int Publish(const RegistryEntry& entry) override;
    int Unpublish(std::string_view type) override;
    std::optional<RegistryEntry> Find(std::string_view type) const override;
    std::vector<RegistryEntry> List() const override;
    std::vector<std::string> ListServers() const override;
};

}  // namespace hos::platform
