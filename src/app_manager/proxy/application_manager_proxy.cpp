#include <app_manager/proxy/application_manager_proxy.h>

#include <app_manager/create_application_manager.h>
#include <app_manager/proxy/application_commands.h>
#include <app_manager/proxy/application_controller.h>
#include <app_manager/proxy/application_watchdog.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>

#include <cstring>
#include <utility>

namespace app_manager::proxy {

namespace {

constexpr const char* kManagerType = "hl.app_manager.ApplicationManager.applicationManager";
constexpr const char* kControllerService = "app_manager.applicationController";
constexpr const char* kCommandsService = "app_manager.applicationCommands";
constexpr const char* kWatchdogService = "app_manager.applicationWatchdog";
constexpr unsigned int kNoLimit = 0xffffffffU;

using Connector = hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel>;

template <typename T>
std::unique_ptr<T, hosipc_detail::api_v1::IpcDeleter> Connect(const hosipc::api_v1::Application& application,
                                                              const char* server, const char* service) {
    const Connector connector({server, std::strlen(server)}, service, 0, true);
    return hosipc_detail::idl_traits::MakeProxyImpl(
        connector, application.GetResourceProvider(),
        static_cast<hosipc_detail::idl_traits::ProxyBait<T>*>(nullptr));
}

}  // namespace

ApplicationManagerProxy::ApplicationManagerProxy(std::shared_ptr<IApplicationController> controller,
                                                 std::shared_ptr<IApplicationCommands> commands,
                                                 std::shared_ptr<IApplicationWatchdog> watchdog)
    : m_controller(std::move(controller)), m_commands(std::move(commands)), m_watchdog(std::move(watchdog)) {
    HCA_CHECK(m_controller != nullptr) << "IApplicationControllerPtr is nullptr!";
    HCA_CHECK(m_commands != nullptr) << "IApplicationCommandsPtr is nullptr!";
    HCA_CHECK(m_watchdog != nullptr) << "IApplicationWatchdogPtr is nullptr!";
}

std::shared_ptr<IApplicationController> ApplicationManagerProxy::GetApplicationController() {
    return m_controller;
}

std::shared_ptr<IApplicationCommands> ApplicationManagerProxy::GetApplicationCommands() {
    return m_commands;
}

std::shared_ptr<IApplicationWatchdog> ApplicationManagerProxy::GetApplicationWatchdog() {
    return m_watchdog;
}

std::shared_ptr<IApplicationManager> CreateApplicationManager(std::string_view appName) {
    std::shared_ptr<IApplicationManager> result;
    try {
        const shared::ipc_utils::ConnectionTarget target =
            shared::ipc_utils::FindConnectionTargetForType(kManagerType, kNoLimit);
        HCA_CHECK(target.has_value())
            << "Connection target for ApplicationManager not found. Interface: " << kManagerType;
        HL_LOG(hos::logger::LogLevel::Info,
               "Connection target for ApplicationManager is: server = {}, service = {}", target.server,
               target.service);

        const hosipc::api_v1::Application application(
            std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
                hosipc_detail::api_v1::MessageCapacity{}, 0U, hosipc::api_v1::ApplicationSettings{}));
        // The service the lookup found is only logged: every channel connects by its own constant.
        auto controllerProxy =
            Connect<ApplicationController::Generated>(application, target.server, kControllerService);
        auto commandsProxy =
            Connect<ApplicationCommands::Generated>(application, target.server, kCommandsService);
        auto watchdogProxy =
            Connect<ApplicationWatchdog::Generated>(application, target.server, kWatchdogService);

        auto controller = std::make_shared<ApplicationController>(std::move(controllerProxy));
        auto commands = std::make_shared<ApplicationCommands>(std::move(commandsProxy), appName);
        auto watchdog = std::make_shared<ApplicationWatchdog>(std::move(watchdogProxy));
        result = std::make_shared<ApplicationManagerProxy>(std::move(controller), std::move(commands),
                                                           std::move(watchdog));
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "Cannot create application manager proxy, {} with result: {}",
               message, code);
    }
    return result;
}

}  // namespace app_manager::proxy

namespace app_manager {

std::shared_ptr<IApplicationManager> CreateApplicationManager(std::string_view appName) {
    return proxy::CreateApplicationManager(appName);
}

}  // namespace app_manager
