#include <uvc/path_text.h>

#include <charconv>
#include <cstdint>

namespace uvc {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool HasForbidden(std::string_view name, const IdSpec& spec) {
    return name.find_first_of(spec.forbidden) != std::string_view::npos;
}

// Numbers of 20 digits fit 64 bits only up to 18446744073709551615, and such numbers are refused.
constexpr std::uint64_t kLargestWritableIndex = 9999999999999999999ULL;

}  // namespace

namespace aux {

IdState CheckId(const Id& id, const IdSpec& spec) {
    if (const auto* index = std::get_if<0>(&id)) {
        return spec.max_index != 0 && *index > spec.max_index ? IdStateIndexTooBig : IdStateOk;
    }
    if (const auto* name = std::get_if<1>(&id)) {
        if (name->empty()) {
            return IdStateEmptyName;
        }
        if (IsDigit(name->front())) {
            return IdStateDigitName;
        }
        return HasForbidden(*name, spec) ? IdStateBadChar : IdStateOk;
    }
    return IdStateBadVariant;
}

}  // namespace aux

std::pair<std::string, IdState> ToString(const Path& path, const IdSpec& spec) {
    if (spec.forbidden.empty()) {
        return {std::string(), IdStateEmptySpec};
    }
    const char delimiter = spec.forbidden.front();
    std::string text;
    for (const Id& id : path) {
        if (const IdState state = aux::CheckId(id, spec); state != IdStateOk) {
            return {std::string(), state};
        }
        if (const auto* index = std::get_if<0>(&id)) {
            if (*index > kLargestWritableIndex) {
                return {std::string(), IdStateBadIndex};
            }
            text += std::to_string(*index);
        } else {
            text += std::get<1>(id);
        }
        text += delimiter;
    }
    return {std::move(text), IdStateOk};
}

std::pair<Path, IdState> FromString(std::string_view text, const IdSpec& spec) {
    if (spec.forbidden.empty()) {
        return {Path(), IdStateEmptySpec};
    }
    const char delimiter = spec.forbidden.front();
    Path path;
    std::size_t cursor = 0;
    while (cursor < text.size()) {
        const std::size_t stop = std::min(text.find(delimiter, cursor), text.size());
        const std::string_view id = text.substr(cursor, stop - cursor);
        if (id.empty()) {
            return {Path(), IdStateEmptyId};
        }
        if (IsDigit(id.front())) {
            for (const char c : id) {
                if (!IsDigit(c)) {
                    return {Path(), IdStateBadChar};
                }
            }
            std::uint64_t index = 0;
            const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), index);
            if (error != std::errc() || end != id.data() + id.size()) {
                return {Path(), IdStateBadIndex};
            }
            if (spec.max_index != 0 && index > spec.max_index) {
                return {Path(), IdStateIndexTooBig};
            }
            path.Append(index);
        } else {
            if (HasForbidden(id, spec)) {
                return {Path(), IdStateBadChar};
            }
            path.Append(std::string(id));
        }
        cursor = stop + 1;
    }
    return {std::move(path), IdStateOk};
}

}  // namespace uvc
