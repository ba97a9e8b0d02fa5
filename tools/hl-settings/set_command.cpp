// hl-settings set PATH VALUE [--type TYPE]: writes VALUE, read as TYPE (string when no --type is
// given), to PATH with SetValue, which replaces what was there with cleared attributes.
#include "commands.h"
#include "core/exit_code.h"
#include "core/path_argument.h"
#include "core/service_connection.h"
#include "core/value_text.h"

#include <settings_manager/path_to_str.h>
#include <uvc/value.h>

namespace hl_settings {

int RunSet(const Invocation& invocation, ServiceConnection& connection) {
    const auto type = TypeFromName(invocation.type.value_or("string"));
    if (!type) {
        return ReportUsage("unknown type '" + *invocation.type + "'");
    }
    // The types without a value may leave VALUE out.
    const bool valueOptional = *type == uvc::IndexNone || *type == uvc::IndexList || *type == uvc::IndexMap;
    if (!invocation.value && !valueOptional) {
        return ReportUsage("set takes PATH and VALUE (VALUE may be left out for none, list and map)");
    }
    std::string error;
    const auto path = ParsePathArgument(invocation.path, error);
    if (!path) {
        return ReportUsage(error);
    }
    const std::string text = invocation.value.value_or("");
    const auto value = ParseValue(*type, text, error);
    if (!value) {
        return ReportUsage("value '" + text + "' " + error);
    }
    if (const int opened = connection.Open(); opened != 0) {
        return opened;
    }
    std::shared_ptr<settings_manager::ISettingsValueSetter> setter;
    connection.Manager().GetSettingsValueSetter(setter);
    if (const std::int32_t result = setter->SetValue(*path, value->GetValue()); result < 0) {
        return ReportFailure("set", settings_manager::PathToStr(*path), result);
    }
    return kExitOk;
}

}  // namespace hl_settings
