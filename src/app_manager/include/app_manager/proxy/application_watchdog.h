#pragma once

// IApplicationWatchdog over the generated ApplicationWatchdog proxy (channel
// "app_manager.applicationWatchdog"). Ping has no handler: it is noexcept, so a transport failure, a
// server failure or a name over 128 bytes ends the process through std::terminate — a lost manager
// takes the application down. One thread at a time.

#include <app_manager/i_application_watchdog.h>

#include <interfaces/hl/app_manager/application_watchdog.h>
#include <ipc_runtime/ipc_deleter.h>

#include <memory>

namespace app_manager::proxy {

class ApplicationWatchdog final : public IApplicationWatchdog {
public:
    using Generated = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationWatchdog;
    using GeneratedPtr = std::unique_ptr<Generated, hosipc_detail::api_v1::IpcDeleter>;

    // Throws hca::CheckFailedException "generated ApplicationWatchdog proxy is nullptr!".
    explicit ApplicationWatchdog(GeneratedPtr proxy);

    std::int32_t Ping(std::string_view appName) noexcept override;

private:
    GeneratedPtr m_proxy;
};

}  // namespace app_manager::proxy
