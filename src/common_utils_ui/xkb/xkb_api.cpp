#include <common_utils_ui/xkb/xkb_api.h>

namespace vdi::common_utils_ui::xkb_api {

xkb_context* XkbApi::XkbContextNew(xkb_context_flags flags) const {
    return xkb_context_new(flags);
}

void XkbApi::XkbContextUnref(xkb_context* context) const {
    xkb_context_unref(context);
}

xkb_keymap* XkbApi::XkbKeymapNewFromNames(xkb_context* context, const xkb_rule_names* names,
                                          xkb_keymap_compile_flags flags) const {
    return xkb_keymap_new_from_names(context, names, flags);
}

void XkbApi::XkbKeymapUnref(xkb_keymap* keymap) const {
    xkb_keymap_unref(keymap);
}

xkb_state* XkbApi::XkbStateNew(xkb_keymap* keymap) const {
    return xkb_state_new(keymap);
}

void XkbApi::XkbStateUnref(xkb_state* state) const {
    xkb_state_unref(state);
}

xkb_keymap* XkbApi::XkbStateGetKeymap(xkb_state* state) const {
    return xkb_state_get_keymap(state);
}

xkb_mod_index_t XkbApi::XkbKeymapModGetIndex(xkb_keymap* keymap, const char* name) const {
    return xkb_keymap_mod_get_index(keymap, name);
}

xkb_mod_index_t XkbApi::XkbKeymapNumMods(xkb_keymap* keymap) const {
    return xkb_keymap_num_mods(keymap);
}

const char* XkbApi::XkbKeymapModGetName(xkb_keymap* keymap, xkb_mod_index_t index) const {
    return xkb_keymap_mod_get_name(keymap, index);
}

}  // namespace vdi::common_utils_ui::xkb_api
