#include "tree_shape.h"

#include <uvc/path.h>

#include <algorithm>

namespace hl_settingsd {

std::optional<std::size_t> FirstMisnested(const std::vector<settings_manager::impl::RawItem>& items) {
    // The paths of the nodes a deeper node would be stored under, by depth below the first item.
    std::vector<uvc::Path> parents;
    for (std::size_t i = 0; i < items.size(); ++i) {
        uvc::Path path;
        try {
            items[i].DeserializePath(path);
        } catch (...) {
            return std::nullopt;
        }
        if (i == 0) {
            parents.push_back(std::move(path));
            continue;
        }
        const std::size_t rootDepth = parents.front().Size();
        if (path.Size() <= rootDepth || path.Size() - rootDepth > parents.size()) {
            return std::nullopt;  // not below the root, or a level jump: Deserialize's own refusals
        }
        const std::size_t rel = path.Size() - rootDepth;
        const uvc::Path& parent = parents[rel - 1];
        if (!path.StartsWith(parent)) {
            return i;
        }
        parents.resize(rel);
        parents.push_back(std::move(path));
    }
    return std::nullopt;
}

}  // namespace hl_settingsd
