#include "manager_server.h"

#include <diagnostics/log.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/ipc_dispatcher/publish_services.h>
#include <platform/platform.h>

#include <array>

namespace hl_appmgr {

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands;
using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController;
using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;

constexpr unsigned int kControllerRiid = 1;
constexpr unsigned int kCommandsRiid = 2;
constexpr unsigned int kWatchdogRiid = 3;
constexpr std::size_t kMessageRoom = 512;
constexpr std::size_t kArenaRoom = 2048;
constexpr unsigned int kReceiveTimeoutMs = 500;

}  // namespace

ManagerServer::ManagerServer(std::shared_ptr<ManagerServices> services)
    : m_services(std::move(services)), m_channel(NK_INVALID_HANDLE) {}

ManagerServer::~ManagerServer() {
    Stop();
}

bool ManagerServer::Start() {
    static const HosEndpointDesc endpoints[] = {
        {kControllerRiid, "app_manager.applicationController", "applicationController",
         "hl.app_manager.ApplicationController"},
        {kCommandsRiid, "app_manager.applicationCommands", "applicationCommands",
         "hl.app_manager.ApplicationCommands"},
        {kWatchdogRiid, "app_manager.applicationWatchdog", "applicationWatchdog",
         "hl.app_manager.ApplicationWatchdog"},
    };
    static const unsigned int numbers[] = {kControllerRiid, kCommandsRiid, kWatchdogRiid};
    static const HosServiceComponentDesc services[] = {
        {"hl.app_manager.ApplicationManager.applicationManager", "applicationManager",
         "hl.app_manager.ApplicationManager", numbers, 3}};
    const HosComponentTree tree{"hl.app_manager.ApplicationManager", endpoints, 3, services, 1};
    if (HosTaskSetComponentTree(HosTaskGetSelf(), &tree) != 0) {
        HL_LOG(hos::logger::LogLevel::Error, "can't declare the component tree");
        return false;
    }
    unsigned int registration = 0;
    m_channel = ServiceLocatorRegister(kServerName, nullptr, 0, &registration);
    if (m_channel == NK_INVALID_HANDLE) {
        HL_LOG(hos::logger::LogLevel::Error,
               "can't register the server {} (is another hl-appmgr running here?)", kServerName);
        return false;
    }
    const int published = shared::ipc_dispatcher::PublishServices({{kPublishedType, kServerName}});
    if (published != 0) {
        HL_LOG(hos::logger::LogLevel::Error, "can't publish {} (0x{:08x})", kPublishedType,
               static_cast<unsigned>(published));
        KnHandleClose(m_channel);
        m_channel = NK_INVALID_HANDLE;
        return false;
    }
    m_thread = std::thread([this] { Serve(); });
    return true;
}

void ManagerServer::Stop() {
    m_stop = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
    if (m_channel != NK_INVALID_HANDLE) {
        KnHandleClose(m_channel);
        m_channel = NK_INVALID_HANDLE;
    }
}

void ManagerServer::Serve() {
    NkHosTransport transport{};
    NkHosTransport_Init(&transport, m_channel, nullptr, 0);
    NkHosSetTransportTimeouts(&transport, kReceiveTimeoutMs, 5000);
    auto resources = std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{});
    hosipc_detail::idl_traits::Stub<ApplicationController> controller(
        static_cast<ApplicationController*>(m_services.get()), resources);
    hosipc_detail::idl_traits::Stub<ApplicationCommands> commands(
        static_cast<ApplicationCommands*>(m_services.get()), resources);
    hosipc_detail::idl_traits::Stub<ApplicationWatchdog> watchdog(
        static_cast<ApplicationWatchdog*>(m_services.get()), resources);

    alignas(8) std::array<unsigned char, kMessageRoom> requestBytes{};
    alignas(8) std::array<unsigned char, kMessageRoom> responseBytes{};
    std::array<unsigned char, kArenaRoom> arenaBytes{};
    std::array<unsigned char, kArenaRoom> responseArenaBytes{};
    auto* request = reinterpret_cast<nk_message*>(requestBytes.data());
    auto* response = reinterpret_cast<nk_message*>(responseBytes.data());
    while (!m_stop) {
        request->sizeFlags = nk_size_word(kMessageRoom, 4);
        nk_arena requestArena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + arenaBytes.size()};
        const int received = transport.ops->receive(&transport, request, &requestArena);
        if (received != 0) {
            if (received != NK_TRANSPORT_TIMEOUT) {
                HL_LOG(hos::logger::LogLevel::Warning, "receive failed: 0x{:08x}",
                       static_cast<unsigned>(received));
            }
            continue;
        }
        // What a request of an unknown interface or method gets back: a bare header.
        responseBytes.fill(0);
        response->iid = request->iid;
        response->mid = request->mid;
        response->sizeFlags = nk_size_word(NK_MESSAGE_HEADER_SIZE, 0);
        nk_arena responseArena{responseArenaBytes.data(), responseArenaBytes.data(),
                               responseArenaBytes.data() + responseArenaBytes.size()};
        switch (request->iid) {
            case kControllerRiid:
                controller.DispatchRequest(request->iid, request, &requestArena, response, &responseArena);
                break;
            case kCommandsRiid:
                commands.DispatchRequest(request->iid, request, &requestArena, response, &responseArena);
                break;
            case kWatchdogRiid:
                watchdog.DispatchRequest(request->iid, request, &requestArena, response, &responseArena);
                break;
            default:
                HL_LOG(hos::logger::LogLevel::Warning, "request for the unknown interface {} (mid {})",
                       static_cast<unsigned>(request->iid), static_cast<unsigned>(request->mid));
                break;
        }
        const int replied = transport.ops->reply(&transport, response, &responseArena);
        if (replied != 0) {
            HL_LOG(hos::logger::LogLevel::Warning, "reply failed: 0x{:08x}", static_cast<unsigned>(replied));
        }
        for (const unsigned int handle : m_services->TakeHandedOver()) {
            KnHandleClose(handle);
        }
    }
}

}  // namespace hl_appmgr
