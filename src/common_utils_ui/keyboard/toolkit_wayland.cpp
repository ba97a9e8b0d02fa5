#include "keyboard/toolkit_wayland.h"

#include <qpa/qplatformnativeinterface.h>
#include <QGuiApplication>

namespace vdi::common_utils_ui::xkb_helper {
namespace {

void* Resource(const char* name) {
    if (QGuiApplication::instance() == nullptr ||
        !QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
        return nullptr;
    }
    QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
    return native == nullptr ? nullptr : native->nativeResourceForIntegration(name);
}

}  // namespace

wl_display* ToolkitWayland::Display() const {
    return static_cast<wl_display*>(Resource("wl_display"));
}

wl_seat* ToolkitWayland::Seat() const {
    return static_cast<wl_seat*>(Resource("wl_seat"));
}

}  // namespace vdi::common_utils_ui::xkb_helper
