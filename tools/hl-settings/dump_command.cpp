// hl-settings dump [PATH]: prints the subtree at PATH (the root without one) in the backup form of
// core/dump_text.h, which `load` reads back.
#include "commands.h"
#include "core/dump_text.h"
#include "core/exit_code.h"

#include <cstdio>

namespace hl_settings {

int RunDump(const Invocation& invocation, ServiceConnection& connection) {
    uvc::Path path;
    settings_manager::Setting setting;
    if (const int read = ReadSettingAt(invocation.path, "dump", connection, path, setting); read != kExitOk) {
        return read;
    }
    std::fputs(DumpText(setting).c_str(), stdout);
    return kExitOk;
}

}  // namespace hl_settings
