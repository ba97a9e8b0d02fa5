#pragma once

#include <common_utils_ui/xkb/i_xkb_api.h>

namespace vdi::common_utils_ui::xkb_api {

// IXkbApi as direct calls into libxkbcommon. Stateless; any thread.
class XkbApi final : public IXkbApi {
public:
    xkb_context* XkbContextNew(xkb_context_flags flags) const override;
    void XkbContextUnref(xkb_context* context) const override;
    xkb_keymap* XkbKeymapNewFromNames(xkb_context* context, const xkb_rule_names* names,
                                      xkb_keymap_compile_flags flags) const override;
    void XkbKeymapUnref(xkb_keymap* keymap) const override;
    xkb_state* XkbStateNew(xkb_keymap* keymap) const override;
    void XkbStateUnref(xkb_state* state) const override;
    xkb_keymap* XkbStateGetKeymap(xkb_state* state) const override;
    xkb_mod_index_t XkbKeymapModGetIndex(xkb_keymap* keymap, const char* name) const override;
    xkb_mod_index_t XkbKeymapNumMods(xkb_keymap* keymap) const override;
    const char* XkbKeymapModGetName(xkb_keymap* keymap, xkb_mod_index_t index) const override;
};

}  // namespace vdi::common_utils_ui::xkb_api
