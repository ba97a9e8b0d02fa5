#pragma once

#include <memory>
#include <string>

namespace vdi::common_utils_ui::xkb_helper {

// Modifier state of the live keyboard, the modifier names of a fixed keymap, and the keyboard's
// first initialisation. Qt main thread only.
class IXkbHelper {
public:
    virtual ~IXkbHelper() = default;

    virtual bool IsCapsLockActive() const = 0;
    virtual bool IsNumLockActive() const = 0;
    virtual bool IsScrollLockActive() const = 0;
    // Modifier names of the keymap pc105 / "us,ru" / grp:alt_shift_toggle, each followed by a
    // blank; empty when the keymap can't be built.
    virtual std::string ConvertModeNamesToString() const = 0;
    // True once the keyboard has a keymap (now or after a synthetic key); false without a
    // keyboard or without a focus object.
    virtual bool TryInitKeyboardInFocus() const = 0;
};

// A helper over libxkbcommon and the platform's keyboard.
std::unique_ptr<IXkbHelper> CreateXkbHelper();

}  // namespace vdi::common_utils_ui::xkb_helper
