#include <platform/ipc_dispatcher/publish_services.h>

#include <diagnostics/log.h>
#include <platform/i_service_registry.h>
#include <platform/nk_result.h>

namespace shared::ipc_dispatcher {

int PublishServices(std::vector<std::pair<const char*, const char*>> services) {
    using hos::logger::LogLevel;
    const auto registry = hos::platform::CreateServiceRegistry();
    int result = NK_EOK;
    for (const auto& [service, endpoint] : services) {
        int rc = NK_EINVAL;
        if (service != nullptr && endpoint != nullptr) {
            rc = registry->Publish(hos::platform::RegistryEntry{service, endpoint, service, 0});
        }
        if (rc != NK_EOK) {
            HL_LOG(LogLevel::Error, "PublishServices: cannot publish \"{}\" under \"{}\": {}",
                   service == nullptr ? "(null)" : service, endpoint == nullptr ? "(null)" : endpoint,
                   NkResultText(rc));
            if (result == NK_EOK) {
                result = rc;
            }
        }
    }
    return result;
}

}  // namespace shared::ipc_dispatcher
