#include "state_directory.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <fmt/format.h>
#include <stdexcept>

namespace hl_settingsd {

namespace {

std::string Home() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && *home != '\0') {
        return home;
    }
    const passwd* entry = ::getpwuid(::geteuid());
    if (entry == nullptr || entry->pw_dir == nullptr) {
        throw std::runtime_error("no home directory to keep the stores in; give --state-dir");
    }
    return entry->pw_dir;
}

}  // namespace

std::string PrepareStateDirectory(const std::optional<std::string>& option) {
    std::filesystem::path directory;
    if (option) {
        directory = *option;
    } else if (const char* xdg = std::getenv("XDG_STATE_HOME"); xdg != nullptr && xdg[0] == '/') {
        directory = std::filesystem::path(xdg) / "halcyra";
    } else {
        directory = std::filesystem::path(Home()) / ".local" / "state" / "halcyra";
    }
    std::error_code error;
    if (directory.has_parent_path()) {
        std::filesystem::create_directories(directory.parent_path(), error);
    }
    if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) {
        throw std::runtime_error("can't make the state directory " + directory.string() + ": " +
                                 std::strerror(errno));
    }
    struct stat info {};
    if (::lstat(directory.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        throw std::runtime_error(directory.string() + " is not a directory" +
                                 (S_ISLNK(info.st_mode) ? " but a symbolic link" : ""));
    }
    if (info.st_uid != ::geteuid()) {
        throw std::runtime_error("the state directory " + directory.string() + " belongs to uid " +
                                 std::to_string(info.st_uid) + ", not to uid " + std::to_string(::geteuid()));
    }
    if ((info.st_mode & 0022) != 0) {
        throw std::runtime_error(fmt::format("the state directory {} may be written by other users (mode {:o})",
                                             directory.string(), info.st_mode & 07777));
    }
    return directory.string();
}

}  // namespace hl_settingsd
