#include "store_files.h"

#include <diagnostics/log.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>
#include <string>

#include <fmt/format.h>

namespace hl_settingsd {

namespace {

using hos::logger::LogLevel;

// Closes a descriptor at the end of a scope.
class ScopedFd {
public:
    explicit ScopedFd(int fd) : m_fd(fd) {}
    ~ScopedFd() {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
    }
    ScopedFd(const ScopedFd&) = delete;
    ScopedFd& operator=(const ScopedFd&) = delete;
    int Get() const { return m_fd; }
    int Release() { return std::exchange(m_fd, -1); }

private:
    int m_fd;
};

std::string Errno() {
    return std::strerror(errno);
}

// Refuses what another user could have put there: anything but a regular file of ours.
void CheckOwnFile(int fd, const std::string& file, struct stat& info) {
    if (::fstat(fd, &info) != 0) {
        throw std::runtime_error("can't stat " + file + ": " + Errno());
    }
    if (!S_ISREG(info.st_mode)) {
        throw std::runtime_error(file + " is not a regular file");
    }
    if (info.st_uid != ::geteuid()) {
        throw std::runtime_error(fmt::format("{} belongs to uid {}, not to uid {}: refused", file, info.st_uid,
                                             ::geteuid()));
    }
}

// SQLite's side files, when they exist, must be ours too.
void CheckSideFile(int directory, const std::string& name, const std::string& file) {
    ScopedFd fd(::openat(directory, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (fd.Get() < 0) {
        if (errno == ENOENT) {
            return;
        }
        throw std::runtime_error("can't open " + file + ": " + Errno() +
                                 (errno == ELOOP ? " (a symbolic link)" : ""));
    }
    struct stat info {};
    CheckOwnFile(fd.Get(), file, info);
}

// The pid written in a lock file, or "unknown".
std::string HolderOf(int fd) {
    char text[24] = {};
    const ssize_t got = ::pread(fd, text, sizeof text - 1, 0);
    return got > 0 ? std::string(text, static_cast<std::size_t>(got)) : std::string("unknown");
}

}  // namespace

StoreFiles::StoreFiles(const std::string& directory, const std::string& name) : m_db(directory + "/" + name) {
    ScopedFd dir(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.Get() < 0) {
        throw std::runtime_error("can't open the state directory " + directory + ": " + Errno());
    }
    const std::string lockName = name + ".lock";
    ScopedFd lock(::openat(dir.Get(), lockName.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (lock.Get() < 0) {
        throw std::runtime_error("can't open the lock " + m_db + ".lock: " + Errno());
    }
    struct stat info {};
    CheckOwnFile(lock.Get(), m_db + ".lock", info);
    if (::flock(lock.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) {
            throw StoreInUse("the store " + m_db + " is in use by pid " + HolderOf(lock.Get()));
        }
        throw std::runtime_error("can't lock " + m_db + ".lock: " + Errno());
    }
    const std::string pid = std::to_string(::getpid());
    if (::ftruncate(lock.Get(), 0) != 0 ||
        ::pwrite(lock.Get(), pid.data(), pid.size(), 0) != static_cast<ssize_t>(pid.size())) {
        HL_LOG(LogLevel::Warning, "can't write the pid into {}.lock: {}", m_db, Errno());
    }

    ScopedFd db(::openat(dir.Get(), name.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (db.Get() < 0) {
        throw std::runtime_error("can't open " + m_db + ": " + Errno() + (errno == ELOOP ? " (a symbolic link)" : ""));
    }
    CheckOwnFile(db.Get(), m_db, info);
    if ((info.st_mode & 0077) != 0) {
        if (::fchmod(db.Get(), 0600) != 0) {
            throw std::runtime_error(fmt::format("{} is open to others (mode {:o}) and can't be narrowed: {}", m_db,
                                                 info.st_mode & 0777, Errno()));
        }
        HL_LOG(LogLevel::Warning, "{} was open to others (mode {:o}): narrowed to 0600", m_db, info.st_mode & 0777);
    }
    if (info.st_size == 0) {
        HL_LOG(LogLevel::Info, "{} is empty (0 bytes): the store starts empty", m_db);
    }
    CheckSideFile(dir.Get(), name + "-wal", m_db + "-wal");
    CheckSideFile(dir.Get(), name + "-shm", m_db + "-shm");
    m_lock = lock.Release();
}

StoreFiles::~StoreFiles() {
    if (m_lock >= 0) {
        ::close(m_lock);
    }
}

}  // namespace hl_settingsd
