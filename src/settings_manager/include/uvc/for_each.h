#pragma once
// uvc::ForEach walks a value tree in pre-order: a node before its children, list elements in index
// order, map entries in key order. T is a node type derived from uvc::TValue<T>, const or not.
//
//   uvc::Path path = root;  // the address of value; changed and restored during the walk
//   uvc::ForEach(value, [&](const uvc::Path& at, const Setting& node) { ...; return Option::Ok; }, path);
//
// The callback returns a for_each::Option, which is treated as the node's own result: Stop or Invalid
// ends the walk at once and is returned; Skip is remembered, returned at the end, and doesn't stop
// the walk. A valueless node gives Invalid after its callback. Exceptions of the callback pass through.

#include <uvc/path.h>
#include <uvc/value.h>

#include <cstdint>
#include <variant>

namespace uvc {

namespace for_each {
enum Option : std::uint8_t {
    Ok = 0,
    Skip = 1,
    Stop = 2,
    Invalid = 3,
};
}  // namespace for_each

namespace aux::impl {

// Folds a result into the walk's remembered result; true when the walk ends.
inline bool Fold(for_each::Option result, for_each::Option& remembered) {
    if (result == for_each::Stop || result == for_each::Invalid) {
        remembered = result;
        return true;
    }
    if (result == for_each::Skip) {
        remembered = for_each::Skip;
    }
    return false;
}

}  // namespace aux::impl

template <typename T, typename Callback>
for_each::Option ForEach(T& value, Callback&& callback, Path& path) {
    for_each::Option result = for_each::Ok;
    if (aux::impl::Fold(callback(static_cast<const Path&>(path), value), result)) {
        return result;
    }
    if (value.valueless_by_exception()) {
        return for_each::Invalid;
    }
    if (auto* list = std::get_if<IndexList>(&value)) {
        std::uint64_t index = 0;
        for (auto& child : *list) {
            path.Append(index++);
            const for_each::Option childResult = ForEach(child, callback, path);
            path.RemoveLast();
            if (aux::impl::Fold(childResult, result)) {
                return result;
            }
        }
    } else if (auto* map = std::get_if<IndexMap>(&value)) {
        for (auto& [key, child] : *map) {
            path.Append(key);
            const for_each::Option childResult = ForEach(child, callback, path);
            path.RemoveLast();
            if (aux::impl::Fold(childResult, result)) {
                return result;
            }
        }
    }
    return result;
}

}  // namespace uvc
