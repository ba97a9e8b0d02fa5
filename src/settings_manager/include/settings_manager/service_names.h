#pragma once
// The seven settings services of the environment, one process each, and their short names (the part
// after "hl.settings_manager."). "hl.settings_manager.MSmgr" keeps its tree in memory only; the others
// are persistent. Pure functions; any thread.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace settings_manager {

struct ServiceName {
    std::string_view name;  // the server name clients connect to
    bool persistent;
};

const std::vector<ServiceName>& KnownServices();
// The service of that full name, or of the short name after "hl.settings_manager." ("PSmgr").
std::optional<ServiceName> FindService(std::string_view name);

}  // namespace settings_manager
