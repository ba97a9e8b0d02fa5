#pragma once

#include <xkbcommon/xkbcommon.h>

namespace vdi::common_utils_ui::xkb_api {

// A thin layer over libxkbcommon, one operation per library call, so that callers can be tested
// with a fake. Ownership follows the library's reference counting.
class IXkbApi {
public:
    virtual ~IXkbApi() = default;

    virtual xkb_context* XkbContextNew(xkb_context_flags flags) const = 0;
    virtual void XkbContextUnref(xkb_context* context) const = 0;
    virtual xkb_keymap* XkbKeymapNewFromNames(xkb_context* context, const xkb_rule_names* names,
                                              xkb_keymap_compile_flags flags) const = 0;
    virtual void XkbKeymapUnref(xkb_keymap* keymap) const = 0;
    virtual xkb_state* XkbStateNew(xkb_keymap* keymap) const = 0;
    virtual void XkbStateUnref(xkb_state* state) const = 0;
    virtual xkb_keymap* XkbStateGetKeymap(xkb_state* state) const = 0;
    virtual xkb_mod_index_t XkbKeymapModGetIndex(xkb_keymap* keymap, const char* name) const = 0;
    virtual xkb_mod_index_t XkbKeymapNumMods(xkb_keymap* keymap) const = 0;
    virtual const char* XkbKeymapModGetName(xkb_keymap* keymap, xkb_mod_index_t index) const = 0;
};

}  // namespace vdi::common_utils_ui::xkb_api
