#include "settings_tree.h"

#include "result_codes.h"

#include <uvc/set_item.h>

#include <stdexcept>
#include <utility>
#include <variant>

namespace hl_settingsd {

namespace {

using settings_manager::Setting;
using settings_manager::SettingList;
using settings_manager::SettingMap;

const Setting* Child(const Setting& parent, const uvc::Id& id) {
    if (const auto* index = std::get_if<std::uint64_t>(&id)) {
        const auto* list = std::get_if<SettingList>(&parent);
        return list != nullptr && *index < list->size() ? &(*list)[static_cast<std::size_t>(*index)]
                                                        : nullptr;
    }
    const auto* map = std::get_if<SettingMap>(&parent);
    if (map == nullptr) {
        return nullptr;
    }
    const auto found = map->find(std::get<std::string>(id));
    return found != map->end() ? &found->second : nullptr;
}

// Whether parent is the container that id addresses (a list for a number, a map for a name).
bool Matches(const Setting& parent, const uvc::Id& id) {
    return std::holds_alternative<std::uint64_t>(id) ? std::holds_alternative<SettingList>(parent)
                                                     : std::holds_alternative<SettingMap>(parent);
}

void Store(Setting& parent, const uvc::Id& id, Setting value) {
    if (const auto* index = std::get_if<std::uint64_t>(&id)) {
        uvc::SetItem(parent, *index, std::move(value),
                     uvc::SetItemAppend | uvc::SetItemInsert | uvc::SetItemReplace);
    } else {
        uvc::SetItem(parent, std::string_view(std::get<std::string>(id)), std::move(value),
                     uvc::SetItemAppend | uvc::SetItemInsert | uvc::SetItemReplace);
    }
}

void ClearFlags(Setting& node) {
    node.attributes = {};
    if (auto* list = std::get_if<SettingList>(&node)) {
        for (auto& child : *list) {
            ClearFlags(child);
        }
    } else if (auto* map = std::get_if<SettingMap>(&node)) {
        for (auto& [key, child] : *map) {
            ClearFlags(child);
        }
    }
}

// Gives every node of fresh that has a node at the same place in old that node's attributes.
void KeepFlags(Setting& fresh, const Setting& old) {
    fresh.attributes = old.attributes;
    auto* freshList = std::get_if<SettingList>(&fresh);
    const auto* oldList = std::get_if<SettingList>(&old);
    if (freshList != nullptr && oldList != nullptr) {
        for (std::size_t i = 0; i < freshList->size() && i < oldList->size(); ++i) {
            KeepFlags((*freshList)[i], (*oldList)[i]);
        }
    }
    auto* freshMap = std::get_if<SettingMap>(&fresh);
    const auto* oldMap = std::get_if<SettingMap>(&old);
    if (freshMap != nullptr && oldMap != nullptr) {
        for (auto& [key, child] : *freshMap) {
            const auto found = oldMap->find(key);
            if (found != oldMap->end()) {
                KeepFlags(child, found->second);
            }
        }
    }
}

Setting View(const Setting& node, std::uint8_t mask) {
    Setting view;
    if (const auto* list = std::get_if<SettingList>(&node)) {
        SettingList children;
        if ((mask & SettingsTree::kReadChildren) != 0) {
            children.reserve(list->size());
            for (const auto& child : *list) {
                children.push_back(View(child, mask));
            }
        }
        view = std::move(children);
    } else if (const auto* map = std::get_if<SettingMap>(&node)) {
        SettingMap children;
        if ((mask & SettingsTree::kReadChildren) != 0) {
            for (const auto& [key, child] : *map) {
                children.emplace(key, View(child, mask));
            }
        }
        view = std::move(children);
    } else if ((mask & SettingsTree::kReadValues) != 0) {
        view = node.GetValue();
    }
    if ((mask & SettingsTree::kReadAttributes) != 0) {
        view.attributes = node.attributes;
    }
    return view;
}

uvc::Path Parent(const uvc::Path& path) {
    uvc::Path parent = path;
    parent.RemoveLast();
    return parent;
}

}  // namespace

bool SettingsTree::IsValidMode(std::uint8_t mode) {
    constexpr std::uint8_t kKnown = kModeCreate | kModeValue | kModeAttributes;
    return (mode & ~kKnown) == 0 && (mode & (kModeCreate | kModeValue)) != 0;
}

SettingsTree::SettingsTree(Setting root) : m_root(std::move(root)) {
    if (!std::holds_alternative<SettingMap>(m_root)) {
        throw std::invalid_argument("the root of a settings tree must be a map");
    }
}

const Setting* SettingsTree::Find(const uvc::Path& path) const {
    const Setting* node = &m_root;
    for (const auto& id : path) {
        node = Child(*node, id);
        if (node == nullptr) {
            return nullptr;
        }
    }
    return node;
}

Setting* SettingsTree::FindMutable(const uvc::Path& path) {
    return const_cast<Setting*>(Find(path));
}

std::int32_t SettingsTree::Read(const uvc::Path& path, std::uint8_t mask, Setting& out) const {
    constexpr std::uint8_t kKnown = kReadValues | kReadAttributes | kReadChildren;
    if ((mask & ~kKnown) != 0) {
        return kInvalidArgument;
    }
    const Setting* node = Find(path);
    if (node == nullptr) {
        return kNotFound;
    }
    out = View(*node, mask);
    return kOk;
}

std::int32_t SettingsTree::PlanWrite(const uvc::Path& path, std::uint8_t mode, Setting value,
                                     TreeChange& change) const {
    if (!IsValidMode(mode)) {
        return kInvalidArgument;
    }
    const Setting* existing = Find(path);
    if ((mode & kModeCreate) != 0) {
        if (existing != nullptr) {
            return kFound;
        }
    } else if ((mode & kModeAttributes) == 0) {
        ClearFlags(value);
        if (existing != nullptr) {
            KeepFlags(value, *existing);
        }
    }
    if (path.Empty() && !std::holds_alternative<SettingMap>(value)) {
        return kInvalidArgument;
    }
    if (existing != nullptr) {
        change = TreeChange{TreeChange::Kind::Replace, path, std::move(value), false};
        return kOk;
    }
    // The deepest node on the way that exists; the ids below it are made.
    uvc::Path base;
    const Setting* node = &m_root;
    std::size_t depth = 0;
    for (const auto& id : path) {
        const Setting* child = Child(*node, id);
        if (child == nullptr) {
            break;
        }
        node = child;
        base.Append(id);
        ++depth;
    }
    const auto& ids = path.Ids();
    if (!Matches(*node, ids[depth])) {
        return kNotMatched;
    }
    Setting branch = std::move(value);
    for (std::size_t i = ids.size() - 1; i > depth; --i) {
        Setting parent =
            std::holds_alternative<std::uint64_t>(ids[i]) ? Setting(SettingList{}) : Setting(SettingMap{});
        Store(parent, ids[i], std::move(branch));
        branch = std::move(parent);
    }
    if (std::holds_alternative<SettingMap>(*node)) {
        uvc::Path at = base;
        at.Append(ids[depth]);
        change = TreeChange{TreeChange::Kind::Replace, std::move(at), std::move(branch), false};
    } else {
        // A list grows: its own node changes (its length), so the list is the unit of the change.
        Setting list = *node;
        Store(list, ids[depth], std::move(branch));
        change = TreeChange{TreeChange::Kind::Replace, std::move(base), std::move(list), false};
    }
    return kOk;
}

std::int32_t SettingsTree::PlanDelete(const uvc::Path& path, TreeChange& change) const {
    if (path.Empty()) {
        change = TreeChange{TreeChange::Kind::Replace, path, Setting(SettingMap{}, m_root.attributes), false};
        return kOk;
    }
    if (Find(path) == nullptr) {
        return kNotFound;
    }
    const uvc::Path parentPath = Parent(path);
    const Setting* parent = Find(parentPath);
    if (std::holds_alternative<SettingList>(*parent)) {
        Setting shorter = *parent;
        auto& elements = std::get<SettingList>(shorter);
        elements.erase(elements.begin() +
                       static_cast<std::ptrdiff_t>(std::get<std::uint64_t>(path.Ids().back())));
        change = TreeChange{TreeChange::Kind::Replace, parentPath, std::move(shorter), false};
        return kOk;
    }
    change = TreeChange{TreeChange::Kind::Remove, path, {}, false};
    return kOk;
}

std::int32_t SettingsTree::PlanSetFlag(const uvc::Path& path, bool flag, TreeChange& change) const {
    if (Find(path) == nullptr) {
        return kNotFound;
    }
    change = TreeChange{TreeChange::Kind::Flag, path, {}, flag};
    return kOk;
}

void SettingsTree::Apply(TreeChange change) {
    switch (change.kind) {
        case TreeChange::Kind::Replace:
            if (change.at.Empty()) {
                m_root = std::move(change.subtree);
            } else {
                Store(*FindMutable(Parent(change.at)), change.at.Ids().back(), std::move(change.subtree));
            }
            break;
        case TreeChange::Kind::Remove:
            std::get<SettingMap>(*FindMutable(Parent(change.at)))
                .erase(std::get<std::string>(change.at.Ids().back()));
            break;
        case TreeChange::Kind::Flag:
            FindMutable(change.at)->attributes.flag = change.flag;
            break;
    }
}

}  // namespace hl_settingsd
