#pragma once

#include <common_utils_ui/keyboard/i_toolkit_keyboard.h>
#include <common_utils_ui/keyboard/i_xkb_helper.h>
#include <common_utils_ui/xkb/i_xkb_api.h>

#include <memory>

namespace vdi::common_utils_ui::xkb_helper {

// IXkbHelper over an IXkbApi and the toolkit's keyboard. Holds no state of its own.
class XkbHelper final : public IXkbHelper {
public:
    // Throws hca::CheckFailedException with "Xkb API is nullptr" for an empty api, and
    // "Keyboard is nullptr" for an empty keyboard.
    XkbHelper(std::shared_ptr<xkb_api::IXkbApi> api, std::shared_ptr<IToolkitKeyboard> keyboard);

    bool IsCapsLockActive() const override;
    bool IsNumLockActive() const override;
    bool IsScrollLockActive() const override;
    std::string ConvertModeNamesToString() const override;
    bool TryInitKeyboardInFocus() const override;

    bool IsModActive(const char* name) const;

private:
    std::shared_ptr<xkb_api::IXkbApi> m_api;
    std::shared_ptr<IToolkitKeyboard> m_keyboard;
};

}  // namespace vdi::common_utils_ui::xkb_helper
