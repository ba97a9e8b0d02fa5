#include "manager_server.h"

#include <diagnostics/log.h>

#include <platform/platform.h>

#include <stdexcept>

namespace hl_appmgr {

namespace {

using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands;
using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController;
using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl;
using hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;

constexpr unsigned int kControllerRiid = 1;
constexpr unsigned int kCommandsRiid = 2;
constexpr unsigned int kWatchdogRiid = 3;
constexpr unsigned int kControlRiid = 4;

}  // namespace

ManagerServer::ManagerServer(std::shared_ptr<ManagerServices> services, std::function<void()> served)
    : m_services(std::move(services)), m_served(std::move(served)) {}

ManagerServer::~ManagerServer() {
    Stop();
}

bool ManagerServer::Start() {
    hosipc::server::ComponentTree tree("hl.app_manager.ApplicationManager");
    tree.Serve<ApplicationController>(kControllerRiid, "app_manager.applicationController", "applicationController",
                                      "hl.app_manager.ApplicationController", m_services.get())
        .Serve<ApplicationCommands>(kCommandsRiid, "app_manager.applicationCommands", "applicationCommands",
                                    "hl.app_manager.ApplicationCommands", m_services.get())
        .Serve<ApplicationWatchdog>(kWatchdogRiid, "app_manager.applicationWatchdog", "applicationWatchdog",
                                    "hl.app_manager.ApplicationWatchdog", m_services.get())
        .Serve<ApplicationManagerControl>(kControlRiid, "app_manager.control", "control",
                                          "hl.app_manager.ApplicationManagerControl", m_services.get())
        .Publish(kPublishedType, "applicationManager", "hl.app_manager.ApplicationManager");
    hosipc::server::ServerOptions options;
    options.handleRoom = 4;
    options.replyTimeoutMs = 5000;
    options.responseArenaRoom = ApplicationManagerControl::kStatusBytes + 1024;
    try {
        m_host = std::make_unique<hosipc::server::ServingHost>(std::move(tree), kServerName, options);
    } catch (const std::exception& error) {
        HL_LOG(hos::logger::LogLevel::Error, "{} (is another hl-appmgr running here?)", error.what());
        return false;
    }
    m_services->SetPeerPid([host = m_host.get()] { return static_cast<long>(host->PeerPid()); });
    m_thread = std::thread([this] { Serve(); });
    return true;
}

void ManagerServer::Stop() {
    m_stop = true;
    if (m_host) {
        m_host->Interrupt();
    }
    if (m_thread.joinable()) {
        m_thread.join();
    }
    m_host.reset();
}

void ManagerServer::Serve() {
    while (!m_stop) {
        const auto report = m_host->ServeOne(NK_TIMEOUT_INFINITE);
        for (const unsigned int handle : m_services->TakeHandedOver()) {
            KnHandleClose(handle);
        }
        if (report.served && m_served) {
            m_served();
        }
    }
}

}  // namespace hl_appmgr
