// The subcommands of hl-appmgr. Each takes the arguments after its name and returns the exit code.
#pragma once

#include <string>
#include <vector>

namespace hl_appmgr {

int RunRun(const std::vector<std::string>& arguments);
int RunStatus(const std::vector<std::string>& arguments);
int RunCommand(const std::vector<std::string>& arguments);

// The state file of the running manager: <runtime directory>/appmgr/status.
std::string StatusFilePath(bool create);

}  // namespace hl_appmgr
