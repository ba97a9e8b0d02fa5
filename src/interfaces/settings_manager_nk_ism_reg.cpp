#include <interfaces/hl/settings_manager/nk_ism_reg.h>

namespace hosipc_detail::idl_traits {

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg, api_v1::IpcDeleter> MakeProxyImpl(
    const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
    ProxyBait<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg>* /*bait*/) {
    return MakeGeneratedProxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg>(connector, resources);
}

}  // namespace hosipc_detail::idl_traits
