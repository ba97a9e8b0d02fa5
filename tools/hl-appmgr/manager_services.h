// The three interfaces of the application manager, served from one object: controller, commands
// and watchdog. Each call is handed to the lifecycle sink; GetUpdateHandle makes an object pair and
// answers one end. Thread: called on the server thread only (ManagerServer).
#pragma once

#include <interfaces/hl/app_manager/application_commands.h>
#include <interfaces/hl/app_manager/application_controller.h>
#include <interfaces/hl/app_manager/application_watchdog.h>

#include <memory>
#include <vector>

#include "i_lifecycle_sink.h"

namespace hl_appmgr {

class ManagerServices final : public hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController,
                              public hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands,
                              public hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog {
public:
    using Bytes = std::vector<unsigned char>;

    // rc of GetCommand for a command that was never set.
    static constexpr int kUnknownCommand = static_cast<int>(0x90000015U);

    explicit ManagerServices(std::shared_ptr<ILifecycleSink> sink);

    void StartApplication(const Bytes& appName, int& rc) override;
    void ReadyToInitialize(const Bytes& appName, int& rc) override;
    void ReadyToShowUI(const Bytes& appName, int& rc) override;
    void FinishWithInternalError(const Bytes& appName, const Bytes& error, const Bytes& details,
                                 int& rc) override;
    void StateChanged(const Bytes& appName, std::int64_t state, int& rc) override;
    void GetUpdateHandle(const Bytes& appName, unsigned int& handle) override;
    void GetCommand(const Bytes& name, std::int64_t& value, int& rc) override;
    void Ping(const std::vector<unsigned char>& appName, int& rc) override;

    // The handles answered since the last call, which the server closes once the reply is sent
    // (the application then holds the only copy).
    std::vector<unsigned int> TakeHandedOver();

private:
    std::shared_ptr<ILifecycleSink> m_sink;
    std::vector<unsigned int> m_handedOver;
};

}  // namespace hl_appmgr
