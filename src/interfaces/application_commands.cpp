#include <interfaces/hl/app_manager/application_commands.h>

namespace hosipc_detail::idl_traits {

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands, api_v1::IpcDeleter>
MakeProxyImpl(const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
              ProxyBait<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands>* /*bait*/) {
    return MakeGeneratedProxy<hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands>(connector,
                                                                                            resources);
}

}  // namespace hosipc_detail::idl_traits
