#include <settings_manager/service_names.h>

namespace settings_manager {

const std::vector<ServiceName>& KnownServices() {
    static const std::vector<ServiceName> services{
        {"hl.settings_manager.PSmgr", true},       {"hl.settings_manager.MSmgr", false},
        {"hl.settings_manager.SecretPSmgr", true}, {"hl.settings_manager.RdpPSmgr", true},
        {"hl.settings_manager.SkalaPSmgr", true},  {"hl.settings_manager.WebPSmgr", true},
        {"hl.settings_manager.UpdatePSmgr", true},
    };
    return services;
}

std::optional<ServiceName> FindService(std::string_view name) {
    constexpr std::string_view kPrefix = "hl.settings_manager.";
    for (const auto& service : KnownServices()) {
        if (name == service.name || (kPrefix.size() + name.size() == service.name.size() &&
                                     service.name.substr(kPrefix.size()) == name)) {
            return service;
        }
    }
    return std::nullopt;
}

}  // namespace settings_manager
