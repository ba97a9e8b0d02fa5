#include "core/path_argument.h"

#include <settings_manager/meta/path_id_rules.h>
#include <uvc/path_text.h>

#include <fmt/format.h>

namespace hl_settings {

namespace {

const char* StateMeaning(uvc::IdState state) {
    switch (state) {
        case uvc::IdStateIndexTooBig:
            return "a numeric id above 65535";
        case uvc::IdStateBadIndex:
            return "a numeric id too long to read";
        case uvc::IdStateEmptyId:
            return "an empty id (two slashes in a row, or a leading slash)";
        case uvc::IdStateBadChar:
            return "a character names can't hold (/ \\ \" ' ` % _ space), or a digit followed by others";
        default:
            return "an id that isn't valid";
    }
}

}  // namespace

std::optional<uvc::Path> ParsePathArgument(std::string_view text, std::string& error) {
    if (text == "/") {
        return uvc::Root;
    }
    auto [path, state] = uvc::FromString(text, settings_manager::meta::GetIdSpecification());
    if (state != uvc::IdStateOk) {
        error = fmt::format("'{}' is no settings path: it has {} (id state {})", text, StateMeaning(state),
                            static_cast<unsigned>(state));
        return std::nullopt;
    }
    return path;
}

}  // namespace hl_settings
