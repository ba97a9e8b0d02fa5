#pragma once

struct wl_display;
struct wl_seat;

namespace vdi::common_utils_ui::xkb_helper {

// The toolkit's own Wayland connection as its platform gives it out: the display and the seat of
// the default input device. Both are owned by the toolkit and live as long as its platform
// integration; null when the platform isn't Wayland or has no such object (yet). Qt main thread.
class IToolkitWayland {
public:
    virtual ~IToolkitWayland() = default;

    virtual wl_display* Display() const = 0;
    virtual wl_seat* Seat() const = 0;
};

}  // namespace vdi::common_utils_ui::xkb_helper
