#pragma once
// The readable form of a settings tree, one line per node in pre-order (a node before its children,
// list elements by index, map entries by key):
//
//   locale/                     map     {2 entries}
//   locale/keyboard.layouts/    list    [1 element]
//   locale/keyboard.layouts/0/  string  "us"
//   locale/language/            string  "en-US"
//
// Columns: the node's full path text, its type, and its value (a container its size) (strings quoted and
// escaped as JSON strings, so that empty ones and spaces show); " flag" ends the line of a node
// whose attribute flag is set. Paths are padded to one column width.
//
// Pure function; any thread.

#include <settings_manager/setting.h>
#include <uvc/path.h>

#include <string>

namespace hl_settings {

// The lines of the tree at path, each ending with a newline.
std::string TreeText(const uvc::Path& path, const settings_manager::Setting& setting);

}  // namespace hl_settings
