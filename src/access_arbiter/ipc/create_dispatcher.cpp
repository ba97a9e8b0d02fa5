#include "ipc/create_dispatcher.h"

#include "ipc/access_arbiter_component_messages.h"
#include <common/ipc_dispatcher/create_dynamic_ipc_facade.h>
#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <platform/hos_task.h>
#include <platform/service_locator.h>

#include <fmt/format.h>

#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace access_arbiter {
namespace {

constexpr const char* kEndpointName = "accessArbiter_id";
constexpr unsigned int kServedEndpoint = 1;

const HosEndpointDesc kEndpoints[] = {
    {0, "waylandClient", "waylandClient", "hl.WaylandClient"},
    {kServedEndpoint, "accessArbiter.accessArbiter", "accessArbiter", "hl.access_arbiter.AccessArbiter"},
};
const unsigned int kServiceEndpoints[] = {kServedEndpoint};
const HosServiceComponentDesc kServices[] = {
    {"accessArbiter", "accessArbiter", "hl.access_arbiter.AccessArbiter", kServiceEndpoints, 1},
};
const HosComponentTree kComponentTree = {"hl.vdi.AccessArbiter", kEndpoints, 2, kServices, 1};

// The locator registration of the server channel; ends it on destruction. The channel itself
// belongs to whoever takes the handle.
class AutoService {
public:
    explicit AutoService(const char* name) : m_handle(ServiceLocatorRegister(name, nullptr, 0, &m_id)) {}
    ~AutoService() {
        if (m_handle != NK_INVALID_HANDLE) {
            ServiceLocatorUnregister(m_id);
        }
    }
    AutoService(const AutoService&) = delete;
    AutoService& operator=(const AutoService&) = delete;

    unsigned int Handle() const { return m_handle; }

private:
    unsigned int m_id = 0;
    unsigned int m_handle;
};

}  // namespace

std::unique_ptr<shared::ipc_dispatcher::DynamicIpcFacade> CreateDispatcher(
    std::shared_ptr<hosipc_detail::api_v1::IDispatcher> dispatcher) {
    std::vector<hos::entity::InterfaceDispatcher> dispatchers{{kServedEndpoint, std::move(dispatcher)}};
    hos::ipc::ConnectionManager::Config config;
    config.periodMs = 1000;

    HosTask* self = HosTaskGetSelf();
    const int treeResult = HosTaskSetComponentTree(self, &kComponentTree);
    HCA_CHECK_RESULT(treeResult) << "entity: can not set up component tree" << treeResult;
    const int connectResult = HosTaskConnectToService(self, self, kEndpointName);
    HCA_CHECK_RESULT(connectResult) << "entity: can not connect to themself, rc=0x"
                                    << fmt::format("{:x}", static_cast<std::uint32_t>(connectResult));

    const AutoService service(kEndpointName);
    config.handles[kServedEndpoint] = service.Handle();
    if (service.Handle() == NK_INVALID_HANDLE) {
        HL_LOG(hos::logger::LogLevel::Critical, "Failed to get handle!");
        return nullptr;
    }
    config.services["access_arbiter.accessArbiter"] = hos::ipc::ConnectionManager::Parameters{1, 1};
    config.log =
        std::make_shared<hos::ipc::ConnectionManager::LogCallback>([](std::string_view text, bool isError) {
            HL_LOG(isError ? hos::logger::LogLevel::Error : hos::logger::LogLevel::Info,
                   "Ipc connection manager: {}", text);
        });

    shared::ipc_dispatcher::DispatcherContext context;
    context.services = {{"hl.access_arbiter.AccessArbiter.accessArbiter", kEndpointName}};
    context.riid = 0;
    context.config = config;
    context.handle = service.Handle();
    return shared::ipc_dispatcher::CreateDynamicIpcFacade<
        hl_access_arbiter_AccessArbiter_component_req, hl_access_arbiter_AccessArbiter_component_res, 0, 0>(
        std::move(dispatchers), context);
}

}  // namespace access_arbiter
