#include <settings_manager/path_to_str.h>

#include <settings_manager/meta/path_id_rules.h>
#include <uvc/path_text.h>
#include <uvc/process_exception.h>

namespace settings_manager {

std::string PathToStr(const uvc::Path& path) noexcept {
    try {
        auto [text, state] = uvc::ToString(path, meta::GetIdSpecification());
        if (state == uvc::IdStateOk) {
            return std::move(text);
        }
        return fmt::format("<path to str fail: state = {}>", state);
    } catch (...) {
        // Formatting the marker may throw too (memory); what stays is an empty text.
        try {
            return fmt::format("<path to str fail: '{}'>", uvc::ProcessException().second);
        } catch (...) {
            return std::string();
        }
    }
}

}  // namespace settings_manager
