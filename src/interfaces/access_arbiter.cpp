#include <interfaces/hl/access_arbiter/access_arbiter.h>

namespace hosipc_detail::idl_traits {

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter, api_v1::IpcDeleter> MakeProxyImpl(
    const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
    ProxyBait<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter>* /*bait*/) {
    return MakeGeneratedProxy<hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter>(connector,
                                                                                         resources);
}

}  // namespace hosipc_detail::idl_traits
