#pragma once
// The shape rule the service holds a node list to, beyond the rebuild rule of the settings client
// (which takes a node's parent from the depth of the node before it and never compares names): each
// node after the first must lie directly below the node it is stored under, that is its path is that
// node's path plus one id. `w/`, `w/a/`, `w/b/c/` breaks it at `w/b/c/`, which the rebuild would graft
// under `w/a/`.
//
// Any thread; no state.

#include <settings_manager/raw_item.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace hl_settingsd {

// The index of the first item that does not lie directly below the item it would be stored under,
// or none. Items whose path can't be read, or that are not below the first one at all, are left to
// settings_manager::Deserialize, which refuses them with its own code.
std::optional<std::size_t> FirstMisnested(const std::vector<settings_manager::impl::RawItem>& items);

}  // namespace hl_settingsd
