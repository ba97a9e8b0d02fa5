#include "read_cursor.h"

#include "settings_tree.h"

#include <cstring>
#include <utility>

namespace hl_settingsd {

namespace {

using settings_manager::Setting;
using settings_manager::SettingList;
using settings_manager::SettingMap;
using settings_manager::impl::RawItem;

std::size_t CountNodes(const Setting& node, bool children) {
    std::size_t count = 1;
    if (!children) {
        return count;
    }
    if (const auto* list = std::get_if<SettingList>(&node)) {
        for (const auto& child : *list) {
            count += CountNodes(child, true);
        }
    } else if (const auto* map = std::get_if<SettingMap>(&node)) {
        for (const auto& [key, child] : *map) {
            count += CountNodes(child, true);
        }
    }
    return count;
}

}  // namespace

ReadCursor::ReadCursor(uvc::Path path, const Setting& node, std::uint8_t mask)
    : m_root(std::move(path)),
      m_node(node),
      m_mask(mask),
      m_count(CountNodes(node, (mask & SettingsTree::kReadChildren) != 0)) {}

RawItem ReadCursor::Item(const uvc::Path& path, const Setting& node) const {
    // The node alone, as SettingsTree::Read's view shows it; a list's aux word (the second word of
    // the value block) counts its elements, which follow it in the read.
    Setting alone;
    std::uint64_t listSize = 0;
    if (const auto* list = std::get_if<SettingList>(&node)) {
        alone = SettingList{};
        listSize = (m_mask & SettingsTree::kReadChildren) != 0 ? list->size() : 0;
    } else if (std::holds_alternative<SettingMap>(node)) {
        alone = SettingMap{};
    } else if ((m_mask & SettingsTree::kReadValues) != 0) {
        alone = node.GetValue();
    }
    if ((m_mask & SettingsTree::kReadAttributes) != 0) {
        alone.attributes = node.attributes;
    }
    RawItem item(path, alone);
    if (listSize != 0) {
        std::memcpy(item.value.data() + sizeof listSize, &listSize, sizeof listSize);
    }
    return item;
}

RawItem ReadCursor::Visit(const uvc::Path& path, const Setting& node) {
    RawItem item = Item(path, node);
    ++m_made;
    if ((m_mask & SettingsTree::kReadChildren) == 0) {
        return item;
    }
    Frame frame;
    if (const auto* list = std::get_if<SettingList>(&node); list != nullptr && !list->empty()) {
        frame.list = list;
    } else if (const auto* map = std::get_if<SettingMap>(&node); map != nullptr && !map->empty()) {
        frame.map = map;
        frame.entry = map->begin();
    } else {
        return item;
    }
    m_stack.push_back(frame);
    m_at = path;
    return item;
}

RawItem ReadCursor::Next() {
    if (m_made == 0) {
        return Visit(m_root, m_node);
    }
    while (true) {
        Frame& top = m_stack.back();
        const bool exhausted = top.list != nullptr ? top.index == top.list->size() : top.entry == top.map->end();
        if (!exhausted) {
            break;
        }
        m_stack.pop_back();
        m_at.RemoveLast();
    }
    Frame& top = m_stack.back();
    uvc::Path path = m_at;
    const Setting* child = nullptr;
    if (top.list != nullptr) {
        path.Append(static_cast<std::uint64_t>(top.index));
        child = &(*top.list)[top.index++];
    } else {
        path.Append(top.entry->first);
        child = &top.entry->second;
        ++top.entry;
    }
    return Visit(path, *child);
}

}  // namespace hl_settingsd
