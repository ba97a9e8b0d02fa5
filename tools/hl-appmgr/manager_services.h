// The four interfaces of the application manager, served from one object: controller, commands,
// watchdog and control. Each lifecycle call goes to the lifecycle sink with the caller's pid (the
// peer credentials of its connection), and one the sink refuses answers rc NK_EACCESS (an invalid
// handle for GetUpdateHandle). GetUpdateHandle makes an object pair and answers one end. The control
// requests go to the supervisor.
// Thread: called on the server thread only (ManagerServer).
#pragma once

#include <interfaces/hl/app_manager/application_commands.h>
#include <interfaces/hl/app_manager/application_controller.h>
#include <interfaces/hl/app_manager/application_manager_control.h>
#include <interfaces/hl/app_manager/application_watchdog.h>

#include <functional>
#include <memory>
#include <vector>

#include "supervisor.h"

namespace hl_appmgr {

class ManagerServices final : public hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController,
                              public hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands,
                              public hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog,
                              public hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl {
public:
    using Bytes = std::vector<unsigned char>;

    // rc of GetCommand for a command that was never set.
    static constexpr int kUnknownCommand = static_cast<int>(0x90000015U);

    explicit ManagerServices(std::shared_ptr<Supervisor> supervisor);

    // Where the pid of the caller of the request being served comes from (the serving host).
    void SetPeerPid(std::function<long()> peerPid) { m_peerPid = std::move(peerPid); }

    void StartApplication(const Bytes& appName, int& rc) override;
    void ReadyToInitialize(const Bytes& appName, int& rc) override;
    void ReadyToShowUI(const Bytes& appName, int& rc) override;
    void FinishWithInternalError(const Bytes& appName, const Bytes& error, const Bytes& details,
                                 int& rc) override;
    void StateChanged(const Bytes& appName, std::int64_t state, int& rc) override;
    void GetUpdateHandle(const Bytes& appName, unsigned int& handle) override;
    void GetCommand(const Bytes& name, std::int64_t& value, int& rc) override;
    void Ping(const std::vector<unsigned char>& appName, int& rc) override;

    void Start(const Bytes& appName, int& rc) override;
    void Stop(const Bytes& appName, int& rc) override;
    void Restart(const Bytes& appName, int& rc) override;
    void ResetFailed(const Bytes& appName, int& rc) override;
    void SetCommand(const Bytes& appName, const Bytes& name, std::int64_t value, int& rc) override;
    void Status(const Bytes& appName, int& rc, Bytes& json) override;

    // The handles answered since the last call, which the server closes once the reply is sent
    // (the application then holds the only copy).
    std::vector<unsigned int> TakeHandedOver();

private:
    long PeerPid() const { return m_peerPid ? m_peerPid() : -1; }

    std::shared_ptr<Supervisor> m_supervisor;
    std::function<long()> m_peerPid;
    std::vector<unsigned int> m_handedOver;
};

}  // namespace hl_appmgr
