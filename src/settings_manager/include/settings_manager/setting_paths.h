#pragma once
// Paths of the settings that the environment's shared code knows. Built during static
// initialisation, in this order, and read-only afterwards: read them from main on, not from another
// static initialiser.

#include <uvc/path.h>

namespace settings_manager::paths {

extern const uvc::Path kLocale;                       // locale/
extern const uvc::Path kLocaleLanguage;               // locale/language/
extern const uvc::Path kLocaleKeyboardDesiredLayout;  // locale/keyboard.desired.layout/
extern const uvc::Path kLocaleKeyboardLayouts;        // locale/keyboard.layouts/
extern const uvc::Path kProfiles;                     // profiles/
extern const uvc::Path kProfilesLocale;               // profiles/locale/
extern const uvc::Path kProfilesLocaleLanguage;       // profiles/locale/language/

}  // namespace settings_manager::paths
