// hl-settings tree [PATH] [--json]: prints the whole subtree at PATH (the root of the store without
// one), one node a line, or as one JSON document.
#include "commands.h"
#include "core/exit_code.h"
#include "core/path_argument.h"
#include "core/service_connection.h"
#include "core/tree_json.h"
#include "core/tree_text.h"

#include <settings_manager/path_to_str.h>

#include <cstdio>

namespace hl_settings {

int RunTree(const Invocation& invocation, ServiceConnection& connection) {
    if (invocation.arguments.size() > 1 || invocation.type) {
        return ReportUsage("tree takes at most one PATH (and --json)");
    }
    std::string error;
    const auto path = ParsePathArgument(invocation.arguments.empty() ? "" : invocation.arguments[0], error);
    if (!path) {
        return ReportUsage(error);
    }
    if (const int opened = connection.Open(); opened != 0) {
        return opened;
    }
    std::shared_ptr<settings_manager::ISettingsGetter> getter;
    connection.Manager().GetSettingsGetter(getter);
    settings_manager::Setting setting;
    if (const std::int32_t result = getter->GetSetting(*path, setting); result < 0) {
        return ReportFailure("tree", settings_manager::PathToStr(*path), result);
    }
    if (invocation.json) {
        auto document = TypedJson(setting);
        document["path"] = settings_manager::PathToStr(*path);
        std::printf("%s\n", document.dump(2).c_str());
    } else {
        std::fputs(TreeText(*path, setting).c_str(), stdout);
    }
    return kExitOk;
}

}  // namespace hl_settings
