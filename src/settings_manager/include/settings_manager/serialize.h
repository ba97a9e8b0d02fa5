#pragma once
// A settings tree in its flat form and back. A tree becomes the pre-order list of its nodes' raw
// items (raw_item.h): the root first, with the given path, then each node before its children, list
// elements in index order, map entries in key order. Any thread; no shared state.
//
// Both functions return uvc::ResultOk or a code and text, never throw, and leave their out arguments
// as they were on failure.
//
// Deserialize enforces the tree rules: every item after the first lies below the root (deeper, and
// beginning with all of the root's ids), and no item is more than one level deeper than the item
// before it. Children are stored with all SetItem options, so gaps in a list fill with alternative 0
// and a repeated id overwrites. A list's aux is only a reservation.
//
// Failures:
//   0x80000101 "[RawSetting] empty raw setting"
//   0x80000064 "[RawSetting] non-rooted path: root = '{}', this = '{}'"
//   0x80000065 "[RawSetting] path level jump: prev = '{}', this = '{}'"
//   0x8000005C "[RawSetting] Insufficient raw data size: fact/plan = {}/{}"
//   0x8000005E "[RawSetting] Invalid value index: {}"
//   0x8000006A "[RawSetting] Invalid value state"            (a valueless node on writing)
//   0x8000005B "[RawSetting] Invalid attrib version: {:#x}"
//   0x80000046 "[RawSetting] Path to str fail: state = {}"
//   0x80000046 "[RawSetting] Str to path fail: src = '{}', state = {}"
//   0x80000044 "[RawSetting] Too big data view size: {}"
//   0x8000004A "uvc: Path or id does not correspond to contained item"  (child of a non-container)
//   others as uvc::ProcessException maps them (a string aux of 0: 0x8000004B and the length error).

#include <settings_manager/raw_item.h>
#include <settings_manager/setting.h>
#include <uvc/error.h>
#include <uvc/path.h>

#include <vector>

namespace settings_manager {

uvc::Result Serialize(const uvc::Path& path, const Setting& setting, std::vector<impl::RawItem>& items);
uvc::Result Deserialize(const std::vector<impl::RawItem>& items, uvc::Path& path, Setting& setting);

}  // namespace settings_manager
