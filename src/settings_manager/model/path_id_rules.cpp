#include <settings_manager/meta/path_id_rules.h>

namespace settings_manager::meta {

const uvc::IdSpec& GetIdSpecification() {
    static const uvc::IdSpec spec{std::string("/\\\"'`%_ ", 8), 0xFFFF};
    return spec;
}

}  // namespace settings_manager::meta
