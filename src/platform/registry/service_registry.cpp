#include "registry/service_registry.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <diagnostics/log.h>
#include <platform/nk_result.h>
#include <platform/runtime_directory.h>

#include "core/unique_fd.h"
#include "registry/registry_entry_text.h"

namespace hos::platform {
namespace {

using hos::logger::LogLevel;

constexpr size_t kMaxNameLength = 200;
// An entry is three short lines; anything much larger is not one.
constexpr off_t kMaxEntryBytes = 4096;

std::vector<std::string> ListDirectory(const std::string& path) {
    std::vector<std::string> names;
    DIR* dir = ::opendir(path.c_str());
    if (dir == nullptr) {
        return names;
    }
    while (const dirent* item = ::readdir(dir)) {
        const std::string name = item->d_name;
        if (IsValidPlatformName(name)) {
            names.push_back(name);
        }
    }
    ::closedir(dir);
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<RegistryEntry> ReadEntry(const std::string& root, const std::string& type) {
    // An entry is a regular file of its own: a symbolic link put in its place is not followed.
    const std::string path = root + "/registry/" + type;
    UniqueFd fd(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    if (!fd.IsValid()) {
        if (errno == ELOOP) {
            HL_LOG(LogLevel::Warning, "Registry entry {} is a symbolic link and is ignored", type);
        }
        return std::nullopt;
    }
    struct stat info {};
    if (::fstat(fd.Get(), &info) != 0 || !S_ISREG(info.st_mode) || info.st_size > kMaxEntryBytes) {
        HL_LOG(LogLevel::Warning, "Registry entry {} is not a small regular file and is ignored", type);
        return std::nullopt;
    }
    std::string text(static_cast<size_t>(info.st_size), '\0');
    const ssize_t got = ::read(fd.Get(), text.data(), text.size());
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    auto entry = ParseRegistryEntry(type, text);
    if (!entry) {
        HL_LOG(LogLevel::Warning, "Registry entry {} is malformed and is ignored", type);
    }
    return entry;
}

}  // namespace

bool IsValidPlatformName(std::string_view name) {
    if (name.empty() || name.size() > kMaxNameLength || name.front() == '.') {
        return false;
    }
    return std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
               c == '_' || c == '-';
    });
}

std::shared_ptr<IServiceRegistry> CreateServiceRegistry() {
    return std::make_shared<ServiceRegistry>();
}

int ServiceRegistry::Publish(const RegistryEntry& entry) {
    if (!IsValidPlatformName(entry.type) || !IsValidPlatformName(entry.server) ||
        !IsValidPlatformName(entry.endpoint)) {
        HL_LOG(LogLevel::Error, "Registry: refusing to publish \"{}\" -> \"{}\":\"{}\": invalid name",
               entry.type, entry.server, entry.endpoint);
        return NK_EINVAL;
    }
    const auto root = runtime_directory::Ensure();
    if (!root) {
        return NK_EFAIL;
    }
    const pid_t pid = entry.pid != 0 ? entry.pid : ::getpid();
    const std::string finalPath = *root + "/registry/" + entry.type;
    // Unique per process and call, so that concurrent publishers never share a temporary file.
    static std::atomic<unsigned int> counter{0};
    const std::string tempPath = *root + "/registry/." + entry.type + "." + std::to_string(::getpid()) + "." +
                                 std::to_string(counter++);
    {
        // A new file of mode 0600: O_EXCL and O_NOFOLLOW never write through something planted.
        RegistryEntry written = entry;
        written.pid = pid;
        const std::string text = FormatRegistryEntry(written);
        UniqueFd fd(::open(tempPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!fd.IsValid() ||
            ::write(fd.Get(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            HL_LOG(LogLevel::Error, "Registry: cannot write {}: {}", tempPath, std::strerror(errno));
            if (fd.IsValid()) {
                ::unlink(tempPath.c_str());
            }
            return NK_EFAIL;
        }
    }
    if (std::rename(tempPath.c_str(), finalPath.c_str()) != 0) {
        HL_LOG(LogLevel::Error, "Registry: cannot publish {}: {}", finalPath, std::strerror(errno));
        ::unlink(tempPath.c_str());
        return NK_EFAIL;
    }
    return NK_EOK;
}

int ServiceRegistry::Unpublish(std::string_view type) {
    if (!IsValidPlatformName(type)) {
        return NK_EINVAL;
    }
    const std::string path = runtime_directory::Path() + "/registry/" + std::string(type);
    return ::unlink(path.c_str()) == 0 ? NK_EOK : NK_ENOTFOUND;
}

std::optional<RegistryEntry> ServiceRegistry::Find(std::string_view type) const {
    if (!IsValidPlatformName(type)) {
        return std::nullopt;
    }
    return ReadEntry(runtime_directory::Path(), std::string(type));
}

std::vector<RegistryEntry> ServiceRegistry::List() const {
    const std::string root = runtime_directory::Path();
    std::vector<RegistryEntry> entries;
    for (const auto& type : ListDirectory(root + "/registry")) {
        if (auto entry = ReadEntry(root, type)) {
            entries.push_back(std::move(*entry));
        }
    }
    return entries;
}

std::vector<std::string> ServiceRegistry::ListServers() const {
    return ListDirectory(runtime_directory::Path() + "/servers");
}

}  // namespace hos::platform
