#include <settings_manager/meta/id_specification.h>

namespace settings_manager::meta {

const uvc::IdSpec& GetIdSpecification() {
    static const uvc::IdSpec spec{std::string("/\\\"'`%_ ", 8), 0xFFFF};
    return spec;
}

}  // namespace settings_manager::meta
