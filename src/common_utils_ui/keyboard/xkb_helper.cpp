#include <common_utils_ui/keyboard/xkb_helper.h>

#include <common_utils_ui/xkb/xkb_api.h>
#include <diagnostics/check.h>
#include <diagnostics/log.h>

#include "keyboard/toolkit_wayland.h"
#include "keyboard/wayland_keyboard.h"

#include <QGuiApplication>

namespace vdi::common_utils_ui::xkb_helper {

XkbHelper::XkbHelper(std::shared_ptr<xkb_api::IXkbApi> api, std::shared_ptr<IToolkitKeyboard> keyboard)
    : m_api(std::move(api)), m_keyboard(std::move(keyboard)) {
    HCA_CHECK(m_api != nullptr) << "Xkb API is nullptr";
    HCA_CHECK(m_keyboard != nullptr) << "Keyboard is nullptr";
}

bool XkbHelper::IsCapsLockActive() const {
    return IsModActive("Lock");
}

bool XkbHelper::IsNumLockActive() const {
    return IsModActive("Mod2");
}

bool XkbHelper::IsScrollLockActive() const {
    return IsModActive("ScrollLock");
}

bool XkbHelper::IsModActive(const char* name) const {
    xkb_state* state = m_keyboard->State();
    if (state == nullptr) {
        return false;
    }
    xkb_keymap* keymap = m_api->XkbStateGetKeymap(state);
    const xkb_mod_index_t index = m_api->XkbKeymapModGetIndex(keymap, name);
    if (index == XKB_MOD_INVALID || index >= 32) {
        return false;
    }
    return (m_keyboard->ModifierMask() & (std::uint32_t{1} << index)) != 0;
}

std::string XkbHelper::ConvertModeNamesToString() const {
    xkb_context* context = m_api->XkbContextNew(XKB_CONTEXT_NO_FLAGS);
    if (context == nullptr) {
        HL_LOG(hos::logger::LogLevel::Error, "XkbHelper: Failed to create xkb contex");
        return {};
    }
    const xkb_rule_names names{nullptr, "pc105", "us,ru", "", "grp:alt_shift_toggle"};
    xkb_keymap* keymap = m_api->XkbKeymapNewFromNames(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (keymap == nullptr) {
        HL_LOG(hos::logger::LogLevel::Error, "XkbHelper: Failed to create xkb keymap");
        m_api->XkbContextUnref(context);
        return {};
    }
    xkb_state* state = m_api->XkbStateNew(keymap);
    if (state == nullptr) {
        HL_LOG(hos::logger::LogLevel::Error, "XkbHelper: Failed to create xkb state");
        m_api->XkbKeymapUnref(keymap);
        m_api->XkbContextUnref(context);
        return {};
    }
    std::string result;
    const xkb_mod_index_t count = m_api->XkbKeymapNumMods(keymap);
    for (xkb_mod_index_t index = 0; index < count; ++index) {
        const char* name = m_api->XkbKeymapModGetName(keymap, index);
        if (name == nullptr) {
            HL_LOG(hos::logger::LogLevel::Warning, "ConvertModeNamesToString: Invalid index of num mods");
            continue;
        }
        result += name;
        result += ' ';
    }
    m_api->XkbStateUnref(state);
    m_api->XkbKeymapUnref(keymap);
    m_api->XkbContextUnref(context);
    return result;
}

bool XkbHelper::TryInitKeyboardInFocus() const {
    if (!m_keyboard->HasKeyboard()) {
        HL_LOG(hos::logger::LogLevel::Warning, "Failed to get keyboard");
        return false;
    }
    if (m_keyboard->HasKeymapOrState()) {
        return true;
    }
    if (QGuiApplication::focusObject() == nullptr) {
        return false;
    }
    m_keyboard->BuildDefaultKeymap();
    return true;
}

std::unique_ptr<IXkbHelper> CreateXkbHelper() {
    return std::make_unique<XkbHelper>(std::make_shared<xkb_api::XkbApi>(),
                                       std::make_shared<WaylandKeyboard>(std::make_shared<ToolkitWayland>()));
}

}  // namespace vdi::common_utils_ui::xkb_helper
