#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>

namespace vdi::common_utils_ui::xkb_helper {

// The keyboard of the default input device as the UI needs it: whether it exists, whether it
// has a keymap or state yet, a way to have the default keymap built when the compositor sent
// none, and the current modifier mask. Used on the Qt main thread.
class IToolkitKeyboard {
public:
    virtual ~IToolkitKeyboard() = default;

    virtual bool HasKeyboard() const = 0;
    virtual bool HasKeymapOrState() const = 0;
    // Builds the default keymap and state, as the first key event would.
    virtual void BuildDefaultKeymap() = 0;
    // The keyboard's state, or null while it has none. Owned by the keyboard.
    virtual xkb_state* State() const = 0;
    // Depressed, latched and locked modifiers, one bit per modifier index.
    virtual std::uint32_t ModifierMask() const = 0;
};

}  // namespace vdi::common_utils_ui::xkb_helper
