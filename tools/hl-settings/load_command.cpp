// hl-settings load [PATH] < FILE: reads a dump (core/dump_text.h) from standard input and writes it
// to PATH (the root without one) in one SetSetting, which replaces the whole subtree there, types
// and attribute flags included. The dump is read whole and checked before the service is asked.
#include "commands.h"
#include "core/dump_text.h"
#include "core/exit_code.h"
#include "core/path_argument.h"

#include <settings_manager/path_to_str.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <iterator>
#include <string>

namespace hl_settings {

int RunLoad(const Invocation& invocation, ServiceConnection& connection) {
    std::string error;
    const auto path = ParsePathArgument(invocation.path, error);
    if (!path) {
        return ReportUsage(error);
    }
    const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    if (std::cin.bad()) {
        std::fprintf(stderr, "hl-settings: load: can't read standard input: %s\n", std::strerror(errno));
        return kExitOutput;
    }
    const auto tree = ParseDumpText(text, error);
    if (!tree) {
        return ReportUsage("load: standard input is no dump: " + error);
    }
    if (const int opened = connection.Open(); opened != 0) {
        return opened;
    }
    std::shared_ptr<settings_manager::ISettingsSetter> setter;
    connection.Manager().GetSettingsSetter(setter);
    if (const std::int32_t result = setter->SetSetting(*path, *tree); result < 0) {
        return ReportFailure("load", settings_manager::PathToStr(*path), result);
    }
    return kExitOk;
}

}  // namespace hl_settings
