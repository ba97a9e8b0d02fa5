#include <ipc_runtime/server/component_tree.h>

namespace hosipc::server {

std::shared_ptr<hosipc_detail::api_v1::ResourceProvider> ComponentTree::Resources() {
    if (!m_resources) {
        m_resources = std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
            hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{});
    }
    return m_resources;
}

int ComponentTree::Declare() const {
    std::vector<HosEndpointDesc> endpoints;
    std::vector<unsigned int> numbers;
    for (const Endpoint& endpoint : m_endpoints) {
        endpoints.push_back({endpoint.riid, endpoint.fullName.c_str(), endpoint.shortName.c_str(),
                             endpoint.interfaceType.c_str()});
        numbers.push_back(endpoint.riid);
    }
    std::vector<HosServiceComponentDesc> services;
    for (const Service& service : m_services) {
        if (!service.declared) {
            continue;
        }
        services.push_back({service.fullName.c_str(), service.shortName.c_str(), service.type.c_str(),
                            numbers.data(), numbers.size()});
    }
    const HosComponentTree tree{m_typeName.c_str(), endpoints.data(), endpoints.size(),
                                services.empty() ? nullptr : services.data(), services.size()};
    return HosTaskSetComponentTree(HosTaskGetSelf(), &tree);
}

}  // namespace hosipc::server
