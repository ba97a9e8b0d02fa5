#include "core/dump_text.h"

#include "core/quoted_text.h"
#include "core/value_text.h"

#include <fmt/format.h>

#include <charconv>
#include <vector>

namespace hl_settings {

namespace {

using settings_manager::Setting;
using settings_manager::SettingList;
using settings_manager::SettingMap;

void AppendNode(const std::string& path, const Setting& node, std::string& out) {
    out += path.empty() ? "/" : path;
    out += ' ';
    out += TypeName(node.index());
    if (node.attributes.flag) {
        out += " flag";
    }
    if (node.index() == uvc::IndexString) {
        out += ' ';
        out += Quote(std::get<std::string>(node.GetValue()));
    } else if (node.index() != uvc::IndexNone && node.index() != uvc::IndexList &&
               node.index() != uvc::IndexMap) {
        out += ' ';
        out += ValueText(node);
    }
    out += '\n';
    if (const auto* list = std::get_if<SettingList>(&node.GetValue())) {
        for (std::size_t i = 0; i < list->size(); ++i) {
            AppendNode(fmt::format("{}{}/", path, i), (*list)[i], out);
        }
    } else if (const auto* map = std::get_if<SettingMap>(&node.GetValue())) {
        for (const auto& [key, child] : *map) {
            AppendNode(path + key + "/", child, out);
        }
    }
}

// The components of a relative path text ("a/0/" gives a, 0); nothing for "/" or a malformed text.
std::optional<std::vector<std::string>> SplitPath(std::string_view text) {
    std::vector<std::string> parts;
    if (text == "/") {
        return parts;
    }
    if (text.empty() || text.back() != '/') {
        return std::nullopt;
    }
    text.remove_suffix(1);
    for (;;) {
        const auto slash = text.find('/');
        const std::string_view part = text.substr(0, slash);
        if (part.empty()) {
            return std::nullopt;
        }
        parts.emplace_back(part);
        if (slash == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(slash + 1);
    }
}

// Puts node at parts below root; false with error set when its parent isn't there.
bool Place(Setting& root, const std::vector<std::string>& parts, Setting node, std::string& error) {
    Setting* parent = &root;
    for (std::size_t level = 0; level < parts.size(); ++level) {
        const std::string& part = parts[level];
        const bool last = level + 1 == parts.size();
        if (auto* map = std::get_if<SettingMap>(&parent->GetValue())) {
            if (last) {
                if (!map->emplace(part, std::move(node)).second) {
                    error = "the node comes twice";
                    return false;
                }
                return true;
            }
            const auto child = map->find(part);
            if (child == map->end()) {
                error = fmt::format("its parent '{}' has no entry '{}'", fmt::join(parts.begin(), parts.begin() + level, "/"), part);
                return false;
            }
            parent = &child->second;
        } else if (auto* list = std::get_if<SettingList>(&parent->GetValue())) {
            std::size_t index = 0;
            const auto [end, ec] = std::from_chars(part.data(), part.data() + part.size(), index);
            if (ec != std::errc() || end != part.data() + part.size()) {
                error = fmt::format("'{}' is no list index", part);
                return false;
            }
            if (last) {
                if (index != list->size()) {
                    error = fmt::format("list element {} comes where element {} is due", index, list->size());
                    return false;
                }
                list->push_back(std::move(node));
                return true;
            }
            if (index >= list->size()) {
                error = fmt::format("its parent has no element {}", index);
                return false;
            }
            parent = &(*list)[index];
        } else {
            error = "its parent is neither a list nor a map";
            return false;
        }
    }
    error = "the node comes twice";
    return false;
}

// One line's node, or nothing with error set.
std::optional<Setting> ParseNode(std::string_view rest, std::size_t type, std::string& error) {
    bool flag = false;
    if (rest == "flag" || rest.substr(0, 5) == "flag ") {
        flag = true;
        rest.remove_prefix(rest.size() > 4 ? 5 : 4);
    }
    std::optional<Setting> node;
    if (type == uvc::IndexString) {
        std::size_t pos = 0;
        auto text = Unquote(rest, pos);
        if (!text || pos != rest.size()) {
            error = "the string is not one quoted text";
            return std::nullopt;
        }
        node = Setting(std::move(*text));
    } else if (type == kJsonType) {
        error = "'json' is no node type";
        return std::nullopt;
    } else {
        node = ParseValue(type, rest, error);
        if (!node) {
            error = fmt::format("the value '{}' {}", rest, error);
            return std::nullopt;
        }
    }
    node->attributes.flag = flag;
    return node;
}

}  // namespace

std::string DumpText(const Setting& tree) {
    std::string out = "# hl-settings dump\n";
    AppendNode("", tree, out);
    return out;
}

std::optional<Setting> ParseDumpText(std::string_view text, std::string& error) {
    std::optional<Setting> root;
    std::size_t number = 0;
    while (!text.empty()) {
        const auto newline = text.find('\n');
        std::string_view line = text.substr(0, newline);
        text.remove_prefix(newline == std::string_view::npos ? text.size() : newline + 1);
        ++number;
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const auto fail = [&error, number](const std::string& what) {
            error = fmt::format("line {}: {}", number, what);
            return std::nullopt;
        };
        const auto pathEnd = line.find(' ');
        if (pathEnd == std::string_view::npos) {
            return fail("no type after the path");
        }
        const auto parts = SplitPath(line.substr(0, pathEnd));
        if (!parts) {
            return fail(fmt::format("'{}' is no relative path", line.substr(0, pathEnd)));
        }
        line.remove_prefix(pathEnd + 1);
        const auto typeEnd = line.find(' ');
        const std::string_view typeName = line.substr(0, typeEnd);
        const auto type = TypeFromName(typeName);
        if (!type) {
            return fail(fmt::format("'{}' is no type", typeName));
        }
        line.remove_prefix(typeEnd == std::string_view::npos ? line.size() : typeEnd + 1);
        std::string why;
        auto node = ParseNode(line, *type, why);
        if (!node) {
            return fail(why);
        }
        if (!root) {
            if (!parts->empty()) {
                return fail("the first node must be the dumped node itself, '/'");
            }
            root = std::move(*node);
        } else if (parts->empty()) {
            return fail("the node comes twice");
        } else if (!Place(*root, *parts, std::move(*node), why)) {
            return fail(why);
        }
    }
    if (!root) {
        error = "the dump holds no node";
        return std::nullopt;
    }
    return root;
}

}  // namespace hl_settings
