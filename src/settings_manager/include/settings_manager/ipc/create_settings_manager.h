#pragma once
// The connection entry points of the settings client. Both create a SettingsManagerProxy (held by
// shared_ptr), which connects in its constructor, and store it in manager. On any failure they log
// "Could not create settings manager proxy: {}" at Critical, return 0x8000004B and leave manager as
// it was. Both forward to one template over the two config types. Any thread.
//
// Defined beside SettingsManagerProxy.

#include <settings_manager/i_settings_manager.h>
#include <settings_manager/ipc/settings_manager_config.h>

#include <cstdint>
#include <memory>

namespace settings_manager::ipc {

std::int32_t CreateSettingsManager(const SettingsManagerConfig& config,
                                   std::shared_ptr<ISettingsManager>& manager);
std::int32_t CreateSettingsManager(const SettingsManagerCmConfig& config,
                                   std::shared_ptr<ISettingsManager>& manager);

}  // namespace settings_manager::ipc
