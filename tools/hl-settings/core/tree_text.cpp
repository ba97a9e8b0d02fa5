#include "core/tree_text.h"

#include "core/quoted_text.h"

#include "core/value_text.h"

#include <settings_manager/path_to_str.h>
#include <uvc/for_each.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace hl_settings {

using settings_manager::Setting;

std::string TreeText(const uvc::Path& path, const Setting& setting) {
    struct Line {
        std::string path;
        std::string type;
        std::string value;
        bool flag;
    };
    std::vector<Line> lines;
    uvc::Path at = path;
    uvc::ForEach(
        setting,
        [&lines](const uvc::Path& nodePath, const Setting& node) {
            std::string value = ValueText(node);
            if (node.index() == uvc::IndexString) {
                value = Quote(value);
            }
            lines.push_back({settings_manager::PathToStr(nodePath), TypeName(node.index()), std::move(value),
                             node.attributes.flag});
            return uvc::for_each::Ok;
        },
        at);
    std::size_t pathWidth = 1;
    std::size_t typeWidth = 0;
    for (const Line& line : lines) {
        pathWidth = std::max(pathWidth, line.path.size());
        typeWidth = std::max(typeWidth, line.type.size());
    }
    std::string text;
    for (const Line& line : lines) {
        std::string row = line.path.empty() ? std::string("/") : line.path;
        row.resize(pathWidth + 2, ' ');
        row += line.type;
        if (line.type != "none") {
            row.resize(pathWidth + 2 + typeWidth + 2, ' ');
            row += line.value;
        }
        if (line.flag) {
            row += " flag";
        }
        text += row;
        text += '\n';
    }
    return text;
}

}  // namespace hl_settings
