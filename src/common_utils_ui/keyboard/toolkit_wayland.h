#pragma once

#include "keyboard/i_toolkit_wayland.h"

namespace vdi::common_utils_ui::xkb_helper {

// IToolkitWayland over Qt's platform native interface ("wl_display", "wl_seat"). Asks only a
// platform whose name begins with "wayland"; on any other platform (xcb, offscreen) both are null.
// Needs the QGuiApplication; Qt main thread only.
class ToolkitWayland final : public IToolkitWayland {
public:
    wl_display* Display() const override;
    wl_seat* Seat() const override;
};

}  // namespace vdi::common_utils_ui::xkb_helper
