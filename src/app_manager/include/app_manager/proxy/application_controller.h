#pragma once

// IApplicationController over the generated ApplicationController proxy (channel
// "app_manager.applicationController"). Every operation logs its entry at level Debug, sends one
// request and returns the manager's rc; a transport failure, a server failure or a text over 128 bytes
// is logged at level Critical and returned as a code, never thrown. Calls block without a timeout
// until the manager answers. Main thread only.

#include <app_manager/i_application_controller.h>

#include <interfaces/hl/app_manager/application_controller.h>
#include <ipc_runtime/ipc_deleter.h>

#include <memory>

namespace app_manager::proxy {

class ApplicationController final : public IApplicationController {
public:
    using Generated = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationController;
    using GeneratedPtr = std::unique_ptr<Generated, hosipc_detail::api_v1::IpcDeleter>;

    // Throws hca::CheckFailedException "generated ApplicationController proxy is nullptr!".
    explicit ApplicationController(GeneratedPtr proxy);

    std::int32_t StartApplication(std::string_view appName) noexcept override;
    std::int32_t ReadyToInitialize(std::string_view appName) noexcept override;
    std::int32_t ReadyToShowUI(std::string_view appName) noexcept override;
    std::int32_t FinishWithInternalError(std::string_view appName, std::string_view error,
                                         std::string_view details) noexcept override;
    std::int32_t StateChanged(std::string_view appName, long state) noexcept override;

private:
    // Logs entryFormat with entryArgs at level Debug, then runs call(result) against the generated
    // proxy; an exception is logged as "Failed to call <failedName>, ..." at level Critical and returned
    // as its code. Both records carry `operation`, the calling operation's name, as their function.
    template <typename Call, typename... EntryArgs>
    std::int32_t Invoke(const char* operation, std::string_view failedName, Call&& call,
                        std::string_view entryFormat, const EntryArgs&... entryArgs) noexcept;

    GeneratedPtr m_proxy;
};

}  // namespace app_manager::proxy
