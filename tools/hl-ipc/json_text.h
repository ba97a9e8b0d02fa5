// JSON text for the machine-readable output of hl-ipc's subcommands.
#pragma once

#include <string>
#include <string_view>

namespace hl_ipc {

// `text` as a JSON string literal, quotes included: '"', '\\' and control characters escaped;
// other bytes pass unchanged, so UTF-8 stays UTF-8.
std::string JsonString(std::string_view text);

}  // namespace hl_ipc
