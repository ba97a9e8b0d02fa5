#include <app_manager/proxy/application_watchdog.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>

#include <exception>
#include <utility>
#include <vector>

namespace app_manager::proxy {

ApplicationWatchdog::ApplicationWatchdog(GeneratedPtr proxy) : m_proxy(std::move(proxy)) {
    HCA_CHECK(m_proxy != nullptr) << "generated ApplicationWatchdog proxy is nullptr!";
}

std::int32_t ApplicationWatchdog::Ping(std::string_view appName) noexcept {
    HL_LOG(hos::logger::LogLevel::Debug, "Proxy: ApplicationWatchdog::Ping {}", appName);
    // Starts at 0, unlike the controller's calls.
    int result = 0;
    try {
        m_proxy->Ping(std::vector<unsigned char>(appName.begin(), appName.end()), result);
    } catch (...) {
        // A lost manager takes the application down, without a log line. The call is explicit: this
        // build's unwinder was seen to let the exception through the noexcept boundary.
        std::terminate();
    }
    return result;
}

}  // namespace app_manager::proxy
