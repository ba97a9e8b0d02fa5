// The test application manager as a real process: its standard input takes commands ("update",
// "close"), every request it served is a line of its output.
#pragma once

#include "support/peer_process.h"

namespace app_manager::testing {

using ManagerProcess = hos::platform::testing::PeerProcess;

}  // namespace app_manager::testing
