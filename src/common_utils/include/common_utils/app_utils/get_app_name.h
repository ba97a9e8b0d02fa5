#pragma once

// The application's name, taken from the command line: argv[0] as it stands.
// Any thread; the returned view refers to argv[0] or to `defaultName` and lives as long as they do.

#include <string_view>

namespace common_utils::app_utils {

// Returns argv[0]. Throws hca::CheckFailedException (with no text) if argc is not above 0 or argv[0]
// is missing or empty.
std::string_view GetAppName(int argc, const char** argv);

// GetAppName's result, or `defaultName` after logging an error line when GetAppName fails.
std::string_view GetAppNameOrDefault(int argc, const char** argv, std::string_view defaultName);

}  // namespace common_utils::app_utils
