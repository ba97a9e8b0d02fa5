// The application manager's server: the IPC runtime's serving host with the four endpoints
// (controller 1, commands 2, watchdog 3, control 4), publishing the type
// "hl.app_manager.ApplicationManager.applicationManager", on a thread of its own that waits for
// requests without a time limit (Stop interrupts it) and calls `served` after each request, so
// that the manager's loop wakes for it and for nothing else. The services learn each request's
// peer pid from the serving host.
// Thread: Start/Stop from one thread; the services and `served` run on the server thread.
#pragma once

#include <ipc_runtime/server/serving_host.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "manager_services.h"

namespace hl_appmgr {

class ManagerServer {
public:
    static constexpr const char* kPublishedType = "hl.app_manager.ApplicationManager.applicationManager";
    static constexpr const char* kServerName = "applicationManager_id";

    ManagerServer(std::shared_ptr<ManagerServices> services, std::function<void()> served);
    ~ManagerServer();
    ManagerServer(const ManagerServer&) = delete;
    ManagerServer& operator=(const ManagerServer&) = delete;

    // Registers, publishes and starts serving. False (logged) when the server can't be set up,
    // for instance when another manager serves in this runtime directory.
    bool Start();
    void Stop();

private:
    void Serve();

    std::shared_ptr<ManagerServices> m_services;
    std::function<void()> m_served;
    std::unique_ptr<hosipc::server::ServingHost> m_host;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

}  // namespace hl_appmgr
