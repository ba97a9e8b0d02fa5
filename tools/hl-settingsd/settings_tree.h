#pragma once
// The tree of one settings store, in memory, and the rules by which requests change it.
//
// The root (the empty path) is always a map. A write is planned first (Plan*: checks, and the change
// it would make, with nothing touched), then committed by the tree store, then applied (Apply), so
// that a store that refuses the commit leaves the tree as it was.
//
// Write modes, a bit set: 1 create (the node must not exist yet; value and attributes are written as
// sent), 2 value (the node's value and subtree are replaced; attributes of nodes that existed at the
// same path are kept, new nodes get cleared ones), 4 attributes (with 2: the attributes are written as
// sent too). Mode 0, mode 4 alone and any other bit are refused (kInvalidArgument). A write below a node
// that doesn't exist creates the missing nodes on the way: a map above a name, a list above a number
// (a list grown past its end fills the gap with empty nodes). A write through a node that is not the
// matching container (a scalar, or a map reached by a number) is refused (kNotMatched). The root can
// only be written with a map, and never created (it exists).
//
// Delete removes a node and its subtree; a list element is taken out and the later ones move up by
// one. Deleting the root empties it.
//
// Read masks, a bit set: 0x02 values, 0x04 attributes, 0x10 the subtree below the node. Without 0x02
// scalars read as empty nodes (containers keep their kind), without 0x04 the flags read cleared,
// without 0x10 only the node itself (a container without its children). Any other bit is refused.
//
// Thread: the service's serving thread only. Plain value type.

#include "tree_change.h"

#include <settings_manager/setting.h>
#include <uvc/path.h>

#include <cstdint>

namespace hl_settingsd {

class SettingsTree {
public:
    static constexpr std::uint8_t kModeCreate = 1;
    static constexpr std::uint8_t kModeValue = 2;
    static constexpr std::uint8_t kModeAttributes = 4;
    static constexpr std::uint8_t kReadValues = 0x02;
    static constexpr std::uint8_t kReadAttributes = 0x04;
    static constexpr std::uint8_t kReadChildren = 0x10;

    // Whether the service takes this write mode at all (the rules above).
    static bool IsValidMode(std::uint8_t mode);
    // Whether the service takes this read mask (the bits above, no other).
    static bool IsValidReadMask(std::uint8_t mask) {
        return (mask & ~(kReadValues | kReadAttributes | kReadChildren)) == 0;
    }

    // Throws std::invalid_argument unless root is a map.
    explicit SettingsTree(settings_manager::Setting root);

    const settings_manager::Setting& Root() const { return m_root; }
    const settings_manager::Setting* Find(const uvc::Path& path) const;

    // The node at path as the read mask shows it; kNotFound, kInvalidArgument for a bad mask.
    std::int32_t Read(const uvc::Path& path, std::uint8_t mask, settings_manager::Setting& out) const;

    std::int32_t PlanWrite(const uvc::Path& path, std::uint8_t mode, settings_manager::Setting value,
                           TreeChange& change) const;
    std::int32_t PlanDelete(const uvc::Path& path, TreeChange& change) const;
    std::int32_t PlanSetFlag(const uvc::Path& path, bool flag, TreeChange& change) const;

    // Applies a change that a Plan* function made on this tree as it is now.
    void Apply(TreeChange change);

private:
    settings_manager::Setting* FindMutable(const uvc::Path& path);

    settings_manager::Setting m_root;
};

}  // namespace hl_settingsd
