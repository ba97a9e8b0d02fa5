#include "registry/registry_entry_text.h"

#include <charconv>

#include <platform/i_service_registry.h>

namespace hos::platform {

std::string FormatRegistryEntry(const RegistryEntry& entry) {
    return "server=" + entry.server + "\nendpoint=" + entry.endpoint + "\npid=" + std::to_string(entry.pid) +
           "\n";
}

std::optional<RegistryEntry> ParseRegistryEntry(std::string_view type, std::string_view text) {
    RegistryEntry entry;
    entry.type = std::string(type);
    while (!text.empty()) {
        const size_t newline = text.find('\n');
        const std::string_view line = text.substr(0, newline);
        text = newline == std::string_view::npos ? std::string_view() : text.substr(newline + 1);
        const size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            continue;
        }
        const std::string_view key = line.substr(0, equals);
        const std::string_view value = line.substr(equals + 1);
        if (key == "server") {
            entry.server = std::string(value);
        } else if (key == "endpoint") {
            entry.endpoint = std::string(value);
        } else if (key == "pid") {
            pid_t pid = 0;
            const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), pid);
            entry.pid = error == std::errc() && end == value.data() + value.size() && pid > 0 ? pid : 0;
        }
    }
    if (!IsValidPlatformName(entry.server) || !IsValidPlatformName(entry.endpoint)) {
        return std::nullopt;
    }
    return entry;
}

}  // namespace hos::platform
