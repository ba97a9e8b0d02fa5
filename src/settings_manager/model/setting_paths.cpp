#include <settings_manager/setting_paths.h>

namespace settings_manager::paths {

const uvc::Path kLocale = uvc::Path(uvc::Root).Append("locale");
const uvc::Path kLocaleLanguage = uvc::Path(kLocale).Append("language");
const uvc::Path kLocaleKeyboardDesiredLayout = uvc::Path(kLocale).Append("keyboard.desired.layout");
const uvc::Path kLocaleKeyboardLayouts = uvc::Path(kLocale).Append("keyboard.layouts");
const uvc::Path kProfiles = uvc::Path(uvc::Root).Append("profiles");
const uvc::Path kProfilesLocale = uvc::Path(kProfiles).Append("locale");
const uvc::Path kProfilesLocaleLanguage = uvc::Path(kProfilesLocale).Append("language");

}  // namespace settings_manager::paths
