#pragma once
// What a server serves, as the platform's component tree declares it: the described interfaces,
// each with its riid, endpoint names and the generated stub over its implementation, and the service
// components the server publishes.
//
//   ComponentTree tree("hl.app_manager.ApplicationManager");
//   tree.Serve<ApplicationWatchdog>(3, "app_manager.applicationWatchdog", "applicationWatchdog",
//                                   "hl.app_manager.ApplicationWatchdog", &watchdog)
//       .Publish("hl.app_manager.ApplicationManager.applicationManager", "applicationManager",
//                "hl.app_manager.ApplicationManager");
//
// Thread: built on one thread, then moved into a ServingHost. The implementations must outlive it.

#include <ipc_runtime/i_dispatcher.h>
#include <ipc_runtime/idl/stub.h>
#include <ipc_runtime/resource_provider.h>

#include <platform/hos_task.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace hosipc::server {

class ComponentTree {
public:
    struct Endpoint {
        unsigned int riid;
        std::string fullName;
        std::string shortName;
        std::string interfaceType;
        std::unique_ptr<hosipc_detail::api_v1::IDispatcher> stub;
        // The handles a request of a method takes (see Stub::RequestHandles), and the most of any.
        std::uint32_t (*requestHandles)(std::uint16_t mid) = nullptr;
        std::uint32_t mostRequestHandles = 0;
    };
    struct Service {
        std::string fullName;  // the type published under the server's name
        std::string shortName;
        std::string type;
        bool declared = true;  // a service component of the tree, or only the published type
    };

    explicit ComponentTree(std::string typeName) : m_typeName(std::move(typeName)) {}

    // Serves `Interface` (a generated interface class) at `riid` through its generated stub over
    // `implementation`. Throws std::invalid_argument for a null implementation.
    template <typename Interface>
    ComponentTree& Serve(unsigned int riid, std::string fullName, std::string shortName, std::string interfaceType,
                         Interface* implementation) {
        if (implementation == nullptr) {
            throw std::invalid_argument(m_typeName + ": the implementation of " + interfaceType + " is null");
        }
        using Stub = hosipc_detail::idl_traits::Stub<Interface>;
        m_endpoints.push_back({riid, std::move(fullName), std::move(shortName), std::move(interfaceType),
                               std::make_unique<Stub>(implementation, Resources()), &Stub::RequestHandles,
                               Stub::MostRequestHandles()});
        return *this;
    }
    // A service component over every endpoint served, published under the server's name.
    ComponentTree& Publish(std::string fullName, std::string shortName, std::string type) {
        m_services.push_back({std::move(fullName), std::move(shortName), std::move(type), true});
        return *this;
    }
    // Only the published type, with no service component: clients that look it up reach the
    // endpoint of the same name.
    ComponentTree& PublishType(std::string fullName) {
        m_services.push_back({std::move(fullName), {}, {}, false});
        return *this;
    }

    const std::string& TypeName() const { return m_typeName; }
    std::vector<Endpoint>& Endpoints() { return m_endpoints; }
    const std::vector<Service>& Services() const { return m_services; }
    // Declares the tree for this process (HosTaskSetComponentTree); its result code.
    int Declare() const;

private:
    std::shared_ptr<hosipc_detail::api_v1::ResourceProvider> Resources();

    std::string m_typeName;
    std::vector<Endpoint> m_endpoints;
    std::vector<Service> m_services;
    std::shared_ptr<hosipc_detail::api_v1::ResourceProvider> m_resources;
};

}  // namespace hosipc::server
