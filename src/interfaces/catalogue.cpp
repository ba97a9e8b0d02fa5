#include <interfaces/catalogue.h>

#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <interfaces/hl/app_manager/application_commands.h>
#include <interfaces/hl/app_manager/application_controller.h>
#include <interfaces/hl/app_manager/application_manager_control.h>
#include <interfaces/hl/app_manager/application_watchdog.h>
#include <interfaces/hl/settings_manager/nk_ism.h>
#include <interfaces/hl/settings_manager/nk_ism_cbk.h>
#include <interfaces/hl/settings_manager/nk_ism_reg.h>

namespace interfaces {

namespace {

namespace idl = hosipc::idl::stdcpp_v1::hl;
using hosipc_detail::idl_traits::DescribeInterface;

}  // namespace

const std::vector<InterfaceInfo>& Catalogue() {
    static const std::vector<InterfaceInfo> catalogue{
        DescribeInterface<idl::access_arbiter::AccessArbiter>("hl.access_arbiter.AccessArbiter"),
        DescribeInterface<idl::app_manager::ApplicationCommands>("hl.app_manager.ApplicationCommands"),
        DescribeInterface<idl::app_manager::ApplicationController>("hl.app_manager.ApplicationController"),
        DescribeInterface<idl::app_manager::ApplicationManagerControl>("hl.app_manager.ApplicationManagerControl"),
        DescribeInterface<idl::app_manager::ApplicationWatchdog>("hl.app_manager.ApplicationWatchdog"),
        DescribeInterface<idl::settings_manager::NkISM>("hl.settings_manager.NkISM"),
        DescribeInterface<idl::settings_manager::NkISMCbk>("hl.settings_manager.NkISMCbk"),
        DescribeInterface<idl::settings_manager::NkISMReg>("hl.settings_manager.NkISMReg"),
    };
    return catalogue;
}

const InterfaceInfo* FindInterface(std::string_view text) {
    for (const InterfaceInfo& interface : Catalogue()) {
        const std::string_view last = interface.name.substr(interface.name.rfind('.') + 1);
        if (text == interface.name || text == last ||
            (text.size() > interface.name.size() && text.substr(0, interface.name.size()) == interface.name &&
             text[interface.name.size()] == '.')) {
            return &interface;
        }
    }
    return nullptr;
}

const MethodInfo* FindMethod(const InterfaceInfo& interface, std::string_view name) {
    for (const MethodInfo& method : interface.methods) {
        if (method.name == name) {
            return &method;
        }
    }
    return nullptr;
}

}  // namespace interfaces
