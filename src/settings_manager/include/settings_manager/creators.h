#pragma once
// Connect to one of the environment's settings services by name. Each logs
// "Connecting to {} settings manager" at Info, then calls settings_manager::ipc::CreateSettingsManager
// with the service name and a connect timeout of 60000 ms, and returns its result; manager is left as
// it was on failure. No retries: the waiting happens inside the connect.
//
//   CreateSettingsManagerPersistent          "hl.settings_manager.PSmgr"
//   CreateSecretSettingsManagerPersistent    "hl.settings_manager.SecretPSmgr"
//   CreateRdpSettingsManagerPersistent       "hl.settings_manager.RdpPSmgr"
//   CreateSkalaSettingsManagerPersistent     "hl.settings_manager.SkalaPSmgr"
//   CreateWebSettingsManagerPersistent       "hl.settings_manager.WebPSmgr"
//   CreateUpdateSettingsManagerPersistent    "hl.settings_manager.UpdatePSmgr"
//   CreateSettingsManagerNonPersistent       "hl.settings_manager.MSmgr"
//
// Defined beside SettingsManagerProxy.

#include <settings_manager/i_settings_manager.h>

#include <cstdint>
#include <memory>

namespace vdi::common_utils::settings {

inline constexpr const char* kPersistentService = "hl.settings_manager.PSmgr";
inline constexpr const char* kSecretPersistentService = "hl.settings_manager.SecretPSmgr";
inline constexpr const char* kRdpPersistentService = "hl.settings_manager.RdpPSmgr";
inline constexpr const char* kSkalaPersistentService = "hl.settings_manager.SkalaPSmgr";
inline constexpr const char* kWebPersistentService = "hl.settings_manager.WebPSmgr";
inline constexpr const char* kUpdatePersistentService = "hl.settings_manager.UpdatePSmgr";
inline constexpr const char* kNonPersistentService = "hl.settings_manager.MSmgr";
inline constexpr unsigned kConnectTimeoutMs = 60000;

std::int32_t CreateSettingsManagerPersistent(std::shared_ptr<settings_manager::ISettingsManager>& manager);
std::int32_t CreateSecretSettingsManagerPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager);
std::int32_t CreateRdpSettingsManagerPersistent(std::shared_ptr<settings_manager::ISettingsManager>& manager);
std::int32_t CreateSkalaSettingsManagerPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager);
std::int32_t CreateWebSettingsManagerPersistent(std::shared_ptr<settings_manager::ISettingsManager>& manager);
std::int32_t CreateUpdateSettingsManagerPersistent(
    std::shared_ptr<settings_manager::ISettingsManager>& manager);
std::int32_t CreateSettingsManagerNonPersistent(std::shared_ptr<settings_manager::ISettingsManager>& manager);

// Connects to "hl.settings_manager.PSmgr" and returns the manager; on failure throws
// hca::CheckResultFailedException with the result and "Failed to create Persistent Settings Manager".
std::shared_ptr<settings_manager::ISettingsManager> CreateSettingsManagerPersistent();

}  // namespace vdi::common_utils::settings
