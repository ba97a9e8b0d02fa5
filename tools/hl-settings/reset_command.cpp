// hl-settings reset PATH [--defaults FILE]: puts PATH back to its default, or deletes it where there
// is none. A settings service can't be asked for its defaults (its interface has no such request),
// so the defaults are those hl-settingsd starts the in-memory service from: the JSON file given with
// --defaults, else for hl.settings_manager.MSmgr the shipped file, found as hl-settingsd finds it
// (defaults/msmgr.json beside the program, else ../share/halcyra/hl-settingsd/msmgr.json from the
// program's directory). The persistent services start empty: without --defaults, reset deletes.
// A path that is absent and has no default is already reset: exit 0.
#include "commands.h"
#include "core/exit_code.h"
#include "core/path_argument.h"
#include "core/tree_json.h"

#include <diagnostics/result_code.h>
#include <settings_manager/path_to_str.h>
#include <settings_manager/service_names.h>

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace hl_settings {

namespace {

namespace fs = std::filesystem;
using settings_manager::Setting;

std::optional<fs::path> ShippedDefaults() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) {
        return std::nullopt;
    }
    for (const fs::path& candidate : {program.parent_path() / "defaults" / "msmgr.json",
                                      program.parent_path() / ".." / "share" / "halcyra" / "hl-settingsd" /
                                          "msmgr.json"}) {
        if (fs::is_regular_file(candidate, error)) {
            return candidate;
        }
    }
    return std::nullopt;
}

// The defaults tree, an empty optional when there are none; false with a message written when a
// defaults file can't be read.
bool ReadDefaults(const Invocation& invocation, const std::string& service, std::optional<Setting>& tree) {
    std::optional<fs::path> file;
    if (invocation.defaults) {
        file = *invocation.defaults;
    } else if (const auto known = settings_manager::FindService(service); known && !known->persistent) {
        file = ShippedDefaults();
    }
    if (!file) {
        return true;
    }
    std::ifstream stream(*file);
    const auto document = nlohmann::json::parse(stream, nullptr, false);
    std::string error = "is no JSON document";
    if (!document.is_discarded()) {
        tree = SettingFromPlainJson(document, error);
    }
    if (!tree) {
        std::fprintf(stderr, "hl-settings: reset: the defaults file '%s' %s\n", file->c_str(), error.c_str());
        return false;
    }
    return true;
}

// The node at path in tree, or null.
const Setting* Find(const Setting& tree, const uvc::Path& path) {
    const Setting* node = &tree;
    for (const uvc::Id& id : path) {
        if (const auto* map = std::get_if<settings_manager::SettingMap>(&node->GetValue());
            map != nullptr && std::holds_alternative<std::string>(id)) {
            const auto child = map->find(std::get<std::string>(id));
            node = child == map->end() ? nullptr : &child->second;
        } else if (const auto* list = std::get_if<settings_manager::SettingList>(&node->GetValue());
                   list != nullptr && std::holds_alternative<std::uint64_t>(id)) {
            const auto index = std::get<std::uint64_t>(id);
            node = index < list->size() ? &(*list)[index] : nullptr;
        } else {
            node = nullptr;
        }
        if (node == nullptr) {
            return nullptr;
        }
    }
    return node;
}

}  // namespace

int RunReset(const Invocation& invocation, ServiceConnection& connection) {
    std::string error;
    const auto path = ParsePathArgument(invocation.path, error);
    if (!path) {
        return ReportUsage(error);
    }
    std::optional<Setting> defaults;
    if (!ReadDefaults(invocation, connection.Service(), defaults)) {
        return kExitUsage;
    }
    if (const int opened = connection.Open(); opened != 0) {
        return opened;
    }
    const std::string pathText = settings_manager::PathToStr(*path);
    if (const Setting* initial = defaults ? Find(*defaults, *path) : nullptr) {
        std::shared_ptr<settings_manager::ISettingsSetter> setter;
        connection.Manager().GetSettingsSetter(setter);
        if (const std::int32_t result = setter->SetSetting(*path, *initial); result < 0) {
            return ReportFailure("reset", pathText, result);
        }
        return kExitOk;
    }
    std::shared_ptr<settings_manager::ISettingsDeleter> deleter;
    connection.Manager().GetSettingsDeleter(deleter);
    if (const std::int32_t result = deleter->DeleteSetting(*path);
        result < 0 && result != hca::result_code::kNotFound) {
        return ReportFailure("reset", pathText, result);
    }
    return kExitOk;
}

}  // namespace hl_settings
