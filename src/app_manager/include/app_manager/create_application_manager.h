#pragma once

// The application manager's clients, without naming the IPC layer. See
// app_manager::proxy::CreateApplicationManager: null on every failure, never throws.

#include <app_manager/i_application_manager.h>

#include <memory>
#include <string_view>

namespace app_manager {

std::shared_ptr<IApplicationManager> CreateApplicationManager(std::string_view appName);

}  // namespace app_manager
