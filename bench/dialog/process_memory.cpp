#include "process_memory.h"

#include <fstream>
#include <string>

namespace access_arbiter::bench {

std::optional<double> ResidentMiB(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::stod(line.substr(6)) / 1024.0;  // the kernel gives kB (KiB)
        }
    }
    return std::nullopt;
}

}  // namespace access_arbiter::bench
