#include "core/child_environment.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace hl_appmgr {

namespace {

constexpr std::array<std::string_view, 3> kManagersOwn{"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"};

std::string_view KeyOf(std::string_view entry) {
    return entry.substr(0, entry.find('='));
}

void Put(std::vector<std::string>& environment, const std::string& key, const std::string& value) {
    const auto found = std::find_if(environment.begin(), environment.end(),
                                    [&](const std::string& entry) { return KeyOf(entry) == key; });
    if (found != environment.end()) {
        *found = key + "=" + value;
    } else {
        environment.push_back(key + "=" + value);
    }
}

}  // namespace

std::vector<std::string> ChildEnvironment(const char* const* parent, const Unit& unit,
                                          const std::string& journalStream) {
    std::vector<std::string> environment;
    for (const char* const* entry = parent; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view key = KeyOf(*entry);
        if (std::find(kManagersOwn.begin(), kManagersOwn.end(), key) == kManagersOwn.end()) {
            environment.emplace_back(*entry);
        }
    }
    if (!journalStream.empty()) {
        Put(environment, "JOURNAL_STREAM", journalStream);
    }
    for (const auto& [key, value] : unit.environment) {
        Put(environment, key, value);
    }
    return environment;
}

}  // namespace hl_appmgr
