#include <settings_manager/creators.h>
#include <settings_manager/ipc/create_settings_manager.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>

namespace vdi::common_utils::settings {

namespace {

std::int32_t CreateSMImpl(std::shared_ptr<settings_manager::ISettingsManager>& manager, const char* name) {
    HL_LOG(hos::logger::LogLevel::Info, "Connecting to {} settings manager", name);
    const settings_manager::ipc::SettingsManagerCmConfig config{name, kConnectTimeoutMs};
    return settings_manager::ipc::CreateSettingsManager(config, manager);
}

}  // namespace

std::int32_t CreateSettingsManagerPersistent(std::shared_ptr<settings_manager::ISettingsManager>& manager) {
    return CreateSMImpl(manager, kPersistentService);
}
std::int32_t CreateSecretSettingsManagerPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager) {
    return CreateSMImpl(manager, kSecretPersistentService);
}
std::int32_t CreateRdpSettingsManagerPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager) {
    return CreateSMImpl(manager, kRdpPersistentService);
}
std::int32_t CreateSkalaSettingsManagerPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager) {
    return CreateSMImpl(manager, kSkalaPersistentService);
}
std::int32_t CreateWebSettingsManagerPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager) {
    return CreateSMImpl(manager, kWebPersistentService);
}
std::int32_t CreateUpdateSettingsManagerPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager) {
    return CreateSMImpl(manager, kUpdatePersistentService);
}
std::int32_t CreateSettingsManagerNonPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager) {
    return CreateSMImpl(manager, kNonPersistentService);
}

std::shared_ptr<settings_manager::ISettingsManager> CreateSettingsManagerPersistent() {
    std::shared_ptr<settings_manager::ISettingsManager> manager;
    HCA_CHECK_RESULT(CreateSMImpl(manager, kPersistentService))
        << "Failed to create Persistent Settings Manager";
    return manager;
}

}  // namespace vdi::common_utils::settings
