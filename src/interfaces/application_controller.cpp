#include <interfaces/hl/app_manager/application_controller.h>

namespace hosipc_detail::idl_traits {

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController, api_v1::IpcDeleter>
MakeProxyImpl(const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
              ProxyBait<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController>* /*bait*/) {
    return MakeGeneratedProxy<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController>(connector,
                                                                                              resources);
}

}  // namespace hosipc_detail::idl_traits
