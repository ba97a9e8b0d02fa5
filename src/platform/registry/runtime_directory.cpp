#include <platform/runtime_directory.h>

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>

#include <diagnostics/log.h>

namespace hos::platform::runtime_directory {
namespace {

using hos::logger::LogLevel;

std::string EnvOrEmpty(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? std::string(value) : std::string();
}

// Creates `path` with mode 0700 if missing; an existing directory must be ours.
bool EnsureOwnDirectory(const std::string& path) {
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        HL_LOG(LogLevel::Error, "Runtime directory {} cannot be created: {}", path, std::strerror(errno));
        return false;
    }
    // lstat: a symbolic link is refused, wherever it points, so nobody can redirect the directory.
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        HL_LOG(LogLevel::Error, "Runtime directory {} is not a directory{}", path,
               S_ISLNK(info.st_mode) ? " but a symbolic link" : "");
        return false;
    }
    if (info.st_uid != ::geteuid()) {
        HL_LOG(LogLevel::Error, "Runtime directory {} belongs to uid {}, not to uid {}", path, info.st_uid,
               ::geteuid());
        return false;
    }
    if ((info.st_mode & 0077) != 0) {
        // Callers come back here often (a status file written every few hundred ms): said once.
        static std::mutex mutex;
        static std::set<std::string> warned;
        std::lock_guard lock(mutex);
        if (warned.insert(path).second) {
            HL_LOG(LogLevel::Warning, "Runtime directory {} is open to other users (mode {:o})", path,
                   info.st_mode & 0777);
        }
    }
    return true;
}

}  // namespace

std::string Path() {
    std::string path = EnvOrEmpty("HL_RUNTIME_DIR");
    if (!path.empty()) {
        return path;
    }
    path = EnvOrEmpty("XDG_RUNTIME_DIR");
    if (!path.empty()) {
        return path + "/halcyra";
    }
    return "/tmp/halcyra-" + std::to_string(::geteuid());
}

std::optional<std::string> Ensure() {
    const std::string root = Path();
    if (!EnsureOwnDirectory(root) || !EnsureOwnDirectory(root + "/servers") ||
        !EnsureOwnDirectory(root + "/registry")) {
        return std::nullopt;
    }
    return root;
}

std::optional<std::string> ServerSocketPath(std::string_view root, std::string_view name) {
    std::string path;
    path.append(root).append("/servers/").append(name);
    if (path.size() >= sizeof(sockaddr_un::sun_path)) {
        HL_LOG(LogLevel::Error, "Socket path {} is longer than the limit of {} bytes", path,
               sizeof(sockaddr_un::sun_path) - 1);
        return std::nullopt;
    }
    return path;
}

}  // namespace hos::platform::runtime_directory
