#include <settings_manager/ipc/create_settings_manager.h>
#include <settings_manager/ipc/settings_manager_proxy.h>

#include <diagnostics/exception.h>
#include <diagnostics/log.h>
#include <diagnostics/text_cast.h>

#include <exception>

namespace settings_manager::ipc {

namespace {

constexpr std::int32_t kCreateFailed = static_cast<std::int32_t>(0x8000004Bu);

template <typename Config>
std::int32_t CreateSettingsManagerImpl(const Config& config, std::shared_ptr<ISettingsManager>& manager) {
    try {
        auto proxy = std::make_shared<SettingsManagerProxy>(config);
        manager = std::move(proxy);
        return 0;
    } catch (const hca::Exception& error) {
        HL_LOG(hos::logger::LogLevel::Critical, "Could not create settings manager proxy: {}",
               hca::text::Cast<std::string>(std::u16string_view(error.DisplayText())));
    } catch (const std::exception& error) {
        HL_LOG(hos::logger::LogLevel::Critical, "Could not create settings manager proxy: {}", error.what());
    }
    return kCreateFailed;
}

}  // namespace

std::int32_t CreateSettingsManager(const SettingsManagerConfig& config,
                                   std::shared_ptr<ISettingsManager>& manager) {
    return CreateSettingsManagerImpl(config, manager);
}

std::int32_t CreateSettingsManager(const SettingsManagerCmConfig& config,
                                   std::shared_ptr<ISettingsManager>& manager) {
    return CreateSettingsManagerImpl(config, manager);
}

}  // namespace settings_manager::ipc
