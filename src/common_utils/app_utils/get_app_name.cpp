#include <common_utils/app_utils/get_app_name.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>

namespace common_utils::app_utils {

std::string_view GetAppName(int argc, const char** argv) {
    HCA_CHECK(argc > 0);
    // A null argv or argv[0] counts as an empty name rather than being dereferenced.
    HCA_CHECK(argv != nullptr && argv[0] != nullptr && argv[0][0] != '\0');
    return argv[0];
}

std::string_view GetAppNameOrDefault(int argc, const char** argv, std::string_view defaultName) {
    try {
        return GetAppName(argc, argv);
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Error, "Failed to get an app name[{}]: {}", code, message);
        return defaultName;
    }
}

}  // namespace common_utils::app_utils
