#include <interfaces/hl/app_manager/application_manager_control.h>

namespace hosipc_detail::idl_traits {

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl, api_v1::IpcDeleter>
MakeProxyImpl(const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
              ProxyBait<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl>* /*bait*/) {
    return MakeGeneratedProxy<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl>(connector,
                                                                                            resources);
}

}  // namespace hosipc_detail::idl_traits
