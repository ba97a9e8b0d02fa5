// hl-settings delete PATH: deletes the setting at PATH with everything below it.
#include "commands.h"
#include "core/exit_code.h"
#include "core/path_argument.h"
#include "core/service_connection.h"

#include <settings_manager/path_to_str.h>

namespace hl_settings {

int RunDelete(const Invocation& invocation, ServiceConnection& connection) {
    std::string error;
    const auto path = ParsePathArgument(invocation.path, error);
    if (!path) {
        return ReportUsage(error);
    }
    if (const int opened = connection.Open(); opened != 0) {
        return opened;
    }
    std::shared_ptr<settings_manager::ISettingsDeleter> deleter;
    connection.Manager().GetSettingsDeleter(deleter);
    if (const std::int32_t result = deleter->DeleteSetting(*path); result < 0) {
        return ReportFailure("delete", settings_manager::PathToStr(*path), result);
    }
    return kExitOk;
}

}  // namespace hl_settings
