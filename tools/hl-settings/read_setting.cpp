// The reading steps get and tree share.
#include "commands.h"
#include "core/exit_code.h"
#include "core/path_argument.h"

#include <settings_manager/path_to_str.h>

namespace hl_settings {

int ReadSettingAt(const std::string& pathText, const char* command, ServiceConnection& connection,
                  uvc::Path& path, settings_manager::Setting& setting) {
    std::string error;
    auto parsed = ParsePathArgument(pathText, error);
    if (!parsed) {
        return ReportUsage(error);
    }
    path = std::move(*parsed);
    if (const int opened = connection.Open(); opened != 0) {
        return opened;
    }
    std::shared_ptr<settings_manager::ISettingsGetter> getter;
    connection.Manager().GetSettingsGetter(getter);
    if (const std::int32_t result = getter->GetSetting(path, setting); result < 0) {
        return ReportFailure(command, settings_manager::PathToStr(path), result);
    }
    return kExitOk;
}

}  // namespace hl_settings
