// hl-settings get PATH [--json]: prints the value at PATH; a list or map prints as `tree` does.
#include "commands.h"
#include "core/exit_code.h"
#include "core/tree_json.h"
#include "core/tree_text.h"
#include "core/value_text.h"

#include <settings_manager/path_to_str.h>

#include <cstdio>

namespace hl_settings {

int RunGet(const Invocation& invocation, ServiceConnection& connection) {
    uvc::Path path;
    settings_manager::Setting setting;
    if (const int read = ReadSettingAt(invocation.path, "get", connection, path, setting);
        read != kExitOk) {
        return read;
    }
    if (invocation.json) {
        auto document = TypedJson(setting);
        document["path"] = settings_manager::PathToStr(path);
        std::printf("%s\n", JsonText(document).c_str());
    } else if (setting.index() == uvc::IndexList || setting.index() == uvc::IndexMap) {
        std::fputs(TreeText(path, setting).c_str(), stdout);
    } else {
        std::printf("%s\n", ValueText(setting).c_str());
    }
    return kExitOk;
}

}  // namespace hl_settings
