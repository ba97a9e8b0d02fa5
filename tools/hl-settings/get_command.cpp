// hl-settings get PATH [--json]: prints the value at PATH; a list or map prints as `tree` does.
#include "commands.h"
#include "core/exit_code.h"
#include "core/path_argument.h"
#include "core/service_connection.h"
#include "core/tree_json.h"
#include "core/tree_text.h"
#include "core/value_text.h"

#include <settings_manager/path_to_str.h>

#include <cstdio>

namespace hl_settings {

int RunGet(const Invocation& invocation, ServiceConnection& connection) {
    if (invocation.arguments.size() != 1 || invocation.type) {
        return ReportUsage("get takes one PATH (and --json)");
    }
    std::string error;
    const auto path = ParsePathArgument(invocation.arguments[0], error);
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
        return ReportFailure("get", settings_manager::PathToStr(*path), result);
    }
    if (invocation.json) {
        auto document = TypedJson(setting);
        document["path"] = settings_manager::PathToStr(*path);
        std::printf("%s\n", document.dump().c_str());
    } else if (setting.index() == uvc::IndexList || setting.index() == uvc::IndexMap) {
        std::fputs(TreeText(*path, setting).c_str(), stdout);
    } else {
        std::printf("%s\n", ValueText(setting).c_str());
    }
    return kExitOk;
}

}  // namespace hl_settings
