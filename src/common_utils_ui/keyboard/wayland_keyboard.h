#pragma once

#include <common_utils_ui/keyboard/i_toolkit_keyboard.h>

#include <cstdint>

struct wl_display;
struct wl_registry;
struct wl_seat;
struct wl_keyboard;

namespace vdi::common_utils_ui::xkb_helper {

// The seat keyboard of the Wayland compositor, read through libwayland-client on a connection of
// its own (the toolkit's Wayland objects have no public interface). Keeps the keymap the
// compositor sends, or builds the default one on request, and follows the modifiers. On any
// other platform it connects to nothing and reports no keyboard. Qt main thread only.
class WaylandKeyboard final : public IToolkitKeyboard {
public:
    WaylandKeyboard();
    ~WaylandKeyboard() override;

    WaylandKeyboard(const WaylandKeyboard&) = delete;
    WaylandKeyboard& operator=(const WaylandKeyboard&) = delete;

    bool HasKeyboard() const override;
    bool HasKeymapOrState() const override;
    void BuildDefaultKeymap() override;
    xkb_state* State() const override;
    std::uint32_t ModifierMask() const override;

    // Listener entry points of libwayland-client; public only so that the C callbacks reach them.
    void OnGlobal(wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version);
    void OnCapabilities(std::uint32_t capabilities);
    void OnKeymap(std::uint32_t format, int fd, std::uint32_t size);
    void OnModifiers(std::uint32_t depressed, std::uint32_t latched, std::uint32_t locked,
                     std::uint32_t group);

private:
    // Reads what the compositor has sent meanwhile.
    void Sync() const;
    void ReplaceKeymap(xkb_keymap* keymap);

    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    wl_seat* m_seat = nullptr;
    wl_keyboard* m_keyboard = nullptr;
    xkb_context* m_context = nullptr;
    xkb_keymap* m_keymap = nullptr;
    xkb_state* m_state = nullptr;
    std::uint32_t m_modifierMask = 0;
};

}  // namespace vdi::common_utils_ui::xkb_helper
