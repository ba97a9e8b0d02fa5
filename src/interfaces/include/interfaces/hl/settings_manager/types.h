#pragma once

// Records of the IDL package hl.settings_manager.Types, as they lie in a message's arena.

#include <platform/nk_message.h>

#include <cstddef>
#include <cstdint>

extern "C" {

// One raw settings item: three references into the same arena. A node list is an nk_ptr_t to an
// array of these records (size 24 times the number of nodes, offset a multiple of 4).
typedef struct hl_settings_manager_Types_NkNode {
    nk_ptr_t path;
    nk_ptr_t value;
    nk_ptr_t attrib;
} hl_settings_manager_Types_NkNode;

}  // extern "C"

static_assert(sizeof(hl_settings_manager_Types_NkNode) == 24, "a node record is 24 bytes");
static_assert(offsetof(hl_settings_manager_Types_NkNode, value) == 8);
static_assert(offsetof(hl_settings_manager_Types_NkNode, attrib) == 16);
