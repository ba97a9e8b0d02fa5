#pragma once
// The id rules of every settings path: names may not contain / \ " ' ` % _ or a space (the slash,
// first, is the delimiter of the text form; a dot is allowed, so "keyboard.desired.layout" is one
// name), and numeric ids go up to 0xFFFF.

#include <uvc/id_spec.h>

namespace settings_manager::meta {

// Built on first use; thread-safe; lives until the process ends.
const uvc::IdSpec& GetIdSpecification();

}  // namespace settings_manager::meta
