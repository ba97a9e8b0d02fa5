#pragma once

#include <common_utils_ui/keyboard/i_toolkit_keyboard.h>

#include "keyboard/i_toolkit_wayland.h"

#include <cstdint>
#include <memory>

struct wl_event_queue;
struct wl_keyboard;

namespace vdi::common_utils_ui::xkb_helper {

// The seat keyboard as the compositor gives it to this program: a wl_keyboard of its own, made
// from the toolkit's seat on the toolkit's connection (so it gets the same keymap and, while a
// window of the program has the keyboard focus, the same modifiers), but on a private event queue.
// Only that queue is ever dispatched (wl_display_roundtrip_queue): the toolkit's queue is left to
// the toolkit. The keyboard is made at the first question that finds a display and a seat, so a
// seat that comes later is still taken; without them there is no keyboard. Keeps the keymap the
// compositor sends, or builds the default one on request, and follows the modifiers.
// A keyboard of its own because Qt 6.4 exposes no handle of its own wl_keyboard (its native
// interface offers the display and the seat only, and QtWaylandClient's private headers are not
// shipped); reading Qt's input device through an unseen layout would be undefined behaviour.
//
// Qt main thread only. Must die before the toolkit's platform integration (a child of the
// application object does: children die before the integration).
class WaylandKeyboard final : public IToolkitKeyboard {
public:
    // Throws hca::CheckFailedException with "Toolkit Wayland is nullptr" for an empty toolkit.
    explicit WaylandKeyboard(std::shared_ptr<IToolkitWayland> toolkit);
    ~WaylandKeyboard() override;

    WaylandKeyboard(const WaylandKeyboard&) = delete;
    WaylandKeyboard& operator=(const WaylandKeyboard&) = delete;

    bool HasKeyboard() const override;
    bool HasKeymapOrState() const override;
    void BuildDefaultKeymap() override;
    xkb_state* State() const override;
    std::uint32_t ModifierMask() const override;

    // Listener entry points of libwayland-client; public only so that the C callbacks reach them.
    void OnKeymap(std::uint32_t format, int fd, std::uint32_t size);
    void OnModifiers(std::uint32_t depressed, std::uint32_t latched, std::uint32_t locked,
                     std::uint32_t group);

private:
    // Makes the keyboard on the private queue once the toolkit has a display and a seat; true
    // when the keyboard exists.
    bool Attach() const;
    // Dispatches what the compositor has sent to the private queue meanwhile.
    void Sync() const;
    void ReplaceKeymap(xkb_keymap* keymap);

    std::shared_ptr<IToolkitWayland> m_toolkit;
    // Made on the first question, which is const.
    mutable wl_display* m_display = nullptr;
    mutable wl_event_queue* m_queue = nullptr;
    mutable wl_keyboard* m_keyboard = nullptr;
    xkb_context* m_context = nullptr;
    xkb_keymap* m_keymap = nullptr;
    xkb_state* m_state = nullptr;
    std::uint32_t m_modifierMask = 0;
};

}  // namespace vdi::common_utils_ui::xkb_helper
