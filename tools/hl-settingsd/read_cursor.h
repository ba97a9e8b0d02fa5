#pragma once
// A read paged from the live tree: the nodes of one subtree in pre-order (the order of
// settings_manager::Serialize), as a read mask shows them (settings_tree.h), made one at a time as
// they are sent, so an open read exchange holds a position in the tree, not a copy of it.
//
//   ReadCursor cursor(path, *tree.Find(path), mask);
//   while (!cursor.Done()) { send(cursor.Next()); }
//
// The cursor points into the tree: it is valid only while the subtree, its ancestors and, for a list
// element, its list are not changed. Whoever changes them first takes what is left (Rest) and drops
// the cursor (see SettingsService::Change).
//
// Thread: the service's serving thread only. Not copyable (it holds positions in the tree).

#include <settings_manager/raw_item.h>
#include <settings_manager/setting.h>
#include <uvc/path.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hl_settingsd {

class ReadCursor {
public:
    ReadCursor(uvc::Path path, const settings_manager::Setting& node, std::uint8_t mask);
    ReadCursor(const ReadCursor&) = delete;
    ReadCursor& operator=(const ReadCursor&) = delete;

    const uvc::Path& Path() const { return m_root; }
    // The number of nodes of the whole read, and of those made so far.
    std::size_t Count() const { return m_count; }
    bool Done() const { return m_made == m_count; }
    // The next node's item; requires !Done().
    settings_manager::impl::RawItem Next();

private:
    struct Frame {
        const settings_manager::SettingList* list = nullptr;
        const settings_manager::SettingMap* map = nullptr;
        std::size_t index = 0;
        settings_manager::SettingMap::const_iterator entry;
    };

    settings_manager::impl::RawItem Item(const uvc::Path& path, const settings_manager::Setting& node) const;
    // Makes the item of node and, when its children are read, goes down into them.
    settings_manager::impl::RawItem Visit(const uvc::Path& path, const settings_manager::Setting& node);

    const uvc::Path m_root;
    const settings_manager::Setting& m_node;
    const std::uint8_t m_mask;
    std::size_t m_count = 0;
    std::size_t m_made = 0;
    uvc::Path m_at;  // the path of the node whose children the top frame walks
    std::vector<Frame> m_stack;
};

}  // namespace hl_settingsd
