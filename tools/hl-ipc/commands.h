// The subcommands of hl-ipc. Each takes the arguments after its name and returns the exit code.
#pragma once

#include <string>
#include <vector>

namespace hl_ipc {

int RunList(const std::vector<std::string>& arguments);
int RunCall(const std::vector<std::string>& arguments);

}  // namespace hl_ipc
