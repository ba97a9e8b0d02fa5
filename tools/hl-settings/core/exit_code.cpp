#include "core/exit_code.h"

#include <diagnostics/result_code.h>

#include <cstdio>

namespace hl_settings {

ExitCode ExitCodeForResult(std::int32_t result) {
    namespace rc = hca::result_code;
    if (result >= 0) {
        return kExitOk;
    }
    switch (result) {
        case rc::kNotFound:
            return kExitNotFound;
        case rc::kMediaError:  // the client's code for a call that failed on the connection
            return kExitUnreachable;
        default:
            return kExitRefused;
    }
}

int ReportFailure(const std::string& what, const std::string& path, std::int32_t result) {
    const ExitCode code = ExitCodeForResult(result);
    const char* meaning = code == kExitNotFound      ? "not found"
                          : code == kExitUnreachable ? "IPC with the service failed"
                                                     : "refused";
    std::fprintf(stderr, "hl-settings: %s '%s': %s (%s)\n", what.c_str(), path.empty() ? "/" : path.c_str(),
                 meaning, hcax::ResultCodeText(result).c_str());
    return code;
}

int ReportUsage(const std::string& message) {
    std::fprintf(stderr, "hl-settings: %s\nTry 'hl-settings --help' for more information.\n", message.c_str());
    return kExitUsage;
}

}  // namespace hl_settings
