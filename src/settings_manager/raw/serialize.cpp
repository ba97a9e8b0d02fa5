#include <settings_manager/serialize.h>

#include <diagnostics/result_code.h>
#include <uvc/for_each.h>
#include <uvc/process_exception.h>
#include <uvc/set_item.h>

#include <fmt/format.h>

#include <utility>

namespace settings_manager {

using impl::RawItem;

uvc::Result Serialize(const uvc::Path& path, const Setting& setting, std::vector<RawItem>& items) {
    try {
        std::vector<RawItem> local;
        uvc::Path cursor = path;
        uvc::ForEach(
            setting,
            [&local](const uvc::Path& at, const Setting& node) {
                local.emplace_back(at, node);
                return uvc::for_each::Ok;
            },
            cursor);
        items.swap(local);
        return uvc::ResultOk;
    } catch (...) {
        return uvc::ProcessException();
    }
}

namespace {

struct Decoded {
    uvc::Path path;
    Setting setting;
};

Decoded Decode(const RawItem& item) {
    Decoded decoded;
    item.DeserializeAttrib(decoded.setting.attributes);
    item.DeserializeValue(decoded.setting);
    item.DeserializePath(decoded.path);
    return decoded;
}

Setting& StoreChild(Setting& parent, const uvc::Id& id, Setting&& child) {
    constexpr unsigned kAllOptions = uvc::SetItemAppend | uvc::SetItemInsert | uvc::SetItemReplace;
    if (const auto* index = std::get_if<0>(&id)) {
        return uvc::SetItem(parent, *index, std::move(child), kAllOptions);
    }
    return uvc::SetItem(parent, std::string_view(std::get<1>(id)), std::move(child), kAllOptions);
}

}  // namespace

uvc::Result Deserialize(const std::vector<RawItem>& items, uvc::Path& path, Setting& setting) {
    using namespace hca::result_code;
    if (items.empty()) {
        return {kSettingsAreRequired, "[RawSetting] empty raw setting"};
    }
    try {
        Decoded root = Decode(items.front());
        const std::size_t rootDepth = root.path.Size();
        // Parents by depth below the root. Entries deeper than the last stored item may be stale;
        // the level jump rule keeps them from being used.
        std::vector<Setting*> stack;
        stack.reserve(8);
        stack.push_back(&root.setting);
        std::size_t prevDepth = rootDepth;

        for (std::size_t i = 1; i < items.size(); ++i) {
            Decoded node = Decode(items[i]);
            const std::size_t depth = node.path.Size();
            if (depth <= rootDepth || !node.path.StartsWith(root.path)) {
                return {kLessThan, fmt::format("[RawSetting] non-rooted path: root = '{}', this = '{}'",
                                               items.front().path, items[i].path)};
            }
            if (depth > prevDepth + 1) {
                return {kMoreThan, fmt::format("[RawSetting] path level jump: prev = '{}', this = '{}'",
                                               items[i - 1].path, items[i].path)};
            }
            const std::size_t rel = depth - rootDepth;
            Setting& child = StoreChild(*stack[rel - 1], node.path.Ids().back(), std::move(node.setting));
            if (rel == stack.size()) {
                stack.push_back(&child);
            } else {
                stack[rel] = &child;
            }
            prevDepth = depth;
        }

        path = std::move(root.path);
        setting = std::move(root.setting);
        return uvc::ResultOk;
    } catch (...) {
        return uvc::ProcessException();
    }
}

}  // namespace settings_manager
