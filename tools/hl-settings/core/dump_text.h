#pragma once
// The backup form of `hl-settings dump` and `load`: every node of a subtree, one a line in pre-order
// (a node before its children, list elements by index, map entries by key), with its type, its
// attribute flag and its value, such that reading it back gives the same tree, bit for bit:
//
//   # hl-settings dump
//   / map
//   locale/ map
//   locale/language/ string "en-US"
//   net/ list flag
//   net/0/ bytes de ad be ef
//
// A line is "PATH TYPE", then " flag" when the attribute flag is set, then " VALUE" for a scalar.
// PATH is relative to the dumped node, which is "/" (a map key or a list index and a slash per level).
// VALUE: a string quoted as quoted_text.h says (any bytes), a double in the shortest form that reads
// back the same, bytes as hex pairs (nothing for none), the others as `set` reads them; none, list and
// map have none. Empty lines and lines starting with '#' are skipped when read.
//
// Pure functions; any thread.

#include <settings_manager/setting.h>

#include <optional>
#include <string>
#include <string_view>

namespace hl_settings {

// The dump of the tree, header line first, every line ending with a newline.
std::string DumpText(const settings_manager::Setting& tree);

// The tree of a dump; nullopt with error set ("line N: ...") when a line can't be read, a node's
// parent is missing or isn't a container, a list element comes out of order, or a node comes twice.
std::optional<settings_manager::Setting> ParseDumpText(std::string_view text, std::string& error);

}  // namespace hl_settings
