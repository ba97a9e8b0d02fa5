#pragma once
// uvc::SetItem stores a value as a child of a container node and returns a reference to the stored
// child. T is a node type derived from uvc::TValue<T> (settings_manager::Setting).
//
// options, a mask of SetItemOption:
//   SetItemAppend  (1)  a numeric id at or past the end of the list; a gap fills with default nodes
//                       (alternative 0): id 5 on an empty list leaves six elements
//   SetItemInsert  (2)  a new key in the map
//   SetItemReplace (4)  overwrite an existing child, value and everything else of the node alike
//
// Throws a copy of ErrorItemMismatch when parent isn't a list (numeric id) or a map (name),
// ErrorItemExists when the child exists and may not be replaced, ErrorItemNotFound when it doesn't
// and may not be made. The returned reference lives as long as the child stays in its container.

#include <uvc/error.h>
#include <uvc/value.h>

#include <cstdint>
#include <string_view>
#include <utility>

namespace uvc {

enum SetItemOption : unsigned {
    SetItemAppend = 1,
    SetItemInsert = 2,
    SetItemReplace = 4,
};

template <typename T>
T& SetItem(T& parent, std::uint64_t id, T value, unsigned options) {
    auto* list = std::get_if<IndexList>(&parent);
    if (list == nullptr) {
        throw ErrorItemMismatch;
    }
    if (id < list->size()) {
        if ((options & SetItemReplace) == 0) {
            throw ErrorItemExists;
        }
        T& child = (*list)[static_cast<std::size_t>(id)];
        child = std::move(value);
        return child;
    }
    if ((options & SetItemAppend) == 0) {
        throw ErrorItemNotFound;
    }
    while (list->size() < id) {
        list->emplace_back();
    }
    return list->emplace_back(std::move(value));
}

template <typename T>
T& SetItem(T& parent, std::string_view id, T value, unsigned options) {
    auto* map = std::get_if<IndexMap>(&parent);
    if (map == nullptr) {
        throw ErrorItemMismatch;
    }
    const auto found = map->find(id);
    if (found == map->end()) {
        if ((options & SetItemInsert) == 0) {
            throw ErrorItemNotFound;
        }
        return map->emplace(std::string(id), std::move(value)).first->second;
    }
    if ((options & SetItemReplace) == 0) {
        throw ErrorItemExists;
    }
    found->second = std::move(value);
    return found->second;
}

}  // namespace uvc
