#pragma once
// The commands of hl-settings, one file each. Each takes the parsed command line and the (not yet
// opened) connection to the service, checks its arguments first, so that a usage error needs no
// service, then opens the connection and returns the exit code (core/exit_code.h). Main thread only.

#include "core/invocation.h"
#include "core/service_connection.h"

#include <settings_manager/setting.h>
#include <uvc/path.h>

#include <string>

namespace hl_settings {

int RunGet(const Invocation& invocation, ServiceConnection& connection);
int RunSet(const Invocation& invocation, ServiceConnection& connection);
int RunDelete(const Invocation& invocation, ServiceConnection& connection);
int RunTree(const Invocation& invocation, ServiceConnection& connection);
int RunMonitor(const Invocation& invocation, ServiceConnection& connection);
int RunReset(const Invocation& invocation, ServiceConnection& connection);
int RunDump(const Invocation& invocation, ServiceConnection& connection);
int RunLoad(const Invocation& invocation, ServiceConnection& connection);

// What get and tree do first: parse PATH_TEXT, open the connection, read the setting there. 0 with
// `path` and `setting` filled, else the exit code of the failure, already reported (`command` names
// the command in its text).
int ReadSettingAt(const std::string& pathText, const char* command, ServiceConnection& connection,
                  uvc::Path& path, settings_manager::Setting& setting);

}  // namespace hl_settings
