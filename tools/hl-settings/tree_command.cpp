// hl-settings tree [PATH] [--json]: prints the whole subtree at PATH (the root of the store without
// one), one node a line, or as one JSON document.
#include "commands.h"
#include "core/exit_code.h"
#include "core/tree_json.h"
#include "core/tree_text.h"

#include <settings_manager/path_to_str.h>

#include <cstdio>

namespace hl_settings {

int RunTree(const Invocation& invocation, ServiceConnection& connection) {
    uvc::Path path;
    settings_manager::Setting setting;
    if (const int read = ReadSettingAt(invocation.path, "tree",
                                       connection, path, setting);
        read != kExitOk) {
        return read;
    }
    if (invocation.json) {
        auto document = TypedJson(setting);
        document["path"] = settings_manager::PathToStr(path);
        std::printf("%s\n", JsonText(document, 2).c_str());
    } else {
        std::fputs(TreeText(path, setting).c_str(), stdout);
    }
    return kExitOk;
}

}  // namespace hl_settings
