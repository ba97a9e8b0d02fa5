// The runtime directory and what lies in it are trusted only when they are this user's own: a
// symbolic link or another user's directory is refused, a socket another user planted under
// servers/ is left alone, and registry entries are read and written without following links.
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include <diagnostics/log_capture_for_testing.h>
#include <platform/i_service_registry.h>
#include <platform/platform.h>

#include "support/scoped_runtime_directory.h"

namespace hos::platform {
namespace {

constexpr uid_t kOtherUid = 65534;

// Registers a server channel; true when it opened (and closes it again).
bool CanRegister(const char* name) {
    unsigned int id = 0;
    const unsigned int handle = ServiceLocatorRegister(name, nullptr, 0, &id);
    if (handle == NK_INVALID_HANDLE) {
        return false;
    }
    KnHandleClose(handle);
    return true;
}

// A socket file at `path` whose server has gone.
void LeaveStaleSocket(const std::string& path) {
    const int fd = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    ::close(fd);
}

TEST(RuntimeDirectoryTest, SymbolicLinkAsTheDirectoryOrAsServersIsRefused) {
    testing::ScopedRuntimeDirectory outer;
    const std::string real = outer.Path() + "/real";
    const std::string link = outer.Path() + "/link";
    ASSERT_EQ(::mkdir(real.c_str(), 0700), 0);
    ASSERT_EQ(::symlink(real.c_str(), link.c_str()), 0);
    hos::logger::LogCaptureForTesting capture;
    ::setenv("HL_RUNTIME_DIR", link.c_str(), 1);
    EXPECT_FALSE(CanRegister("through-link"));
    EXPECT_TRUE(capture.Contains("but a symbolic link"));
    EXPECT_FALSE(std::filesystem::exists(real + "/servers"));

    ::setenv("HL_RUNTIME_DIR", real.c_str(), 1);
    ASSERT_EQ(::symlink(outer.Path().c_str(), (real + "/servers").c_str()), 0);
    EXPECT_FALSE(CanRegister("through-link"));
    ::unlink((real + "/servers").c_str());
    EXPECT_TRUE(CanRegister("direct"));
    ::setenv("HL_RUNTIME_DIR", outer.Path().c_str(), 1);
}

TEST(RuntimeDirectoryTest, DirectoryOrSocketOfAnotherUserIsNotUsedButOurOwnStaleSocketIsTakenOver) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to give a file to another user";
    }
    testing::ScopedRuntimeDirectory directory;
    ASSERT_TRUE(CanRegister("first"));  // makes servers/ and registry/
    const std::string socket = directory.ServerSocket("planted");
    LeaveStaleSocket(socket);
    ASSERT_EQ(::chown(socket.c_str(), kOtherUid, kOtherUid), 0);
    hos::logger::LogCaptureForTesting capture;
    EXPECT_FALSE(CanRegister("planted"));
    EXPECT_TRUE(capture.Contains("is left alone"));
    EXPECT_TRUE(std::filesystem::exists(socket));

    const std::string own = directory.ServerSocket("stale");
    LeaveStaleSocket(own);
    EXPECT_TRUE(CanRegister("stale"));

    ASSERT_EQ(::chown(directory.Path().c_str(), kOtherUid, kOtherUid), 0);
    EXPECT_FALSE(CanRegister("elsewhere"));
    EXPECT_TRUE(capture.Contains("belongs to uid 65534"));
    ASSERT_EQ(::chown(directory.Path().c_str(), 0, 0), 0);
}

TEST(RuntimeDirectoryTest, RegistryEntryThatIsASymbolicLinkIsIgnoredAndEntriesAreMode0600) {
    testing::ScopedRuntimeDirectory directory;
    const auto registry = CreateServiceRegistry();
    ASSERT_EQ(registry->Publish({"real.type", "server", "endpoint", 0}), 0);
    struct stat info {};
    ASSERT_EQ(::stat((directory.Path() + "/registry/real.type").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    const std::string elsewhere = directory.Path() + "/elsewhere";
    std::ofstream(elsewhere) << "server=decoy\nendpoint=decoy\npid=1\n";
    ASSERT_EQ(::symlink(elsewhere.c_str(), (directory.Path() + "/registry/linked.type").c_str()), 0);
    EXPECT_FALSE(registry->Find("linked.type").has_value());
    ASSERT_EQ(registry->List().size(), 1u);
    EXPECT_EQ(registry->List()[0].type, "real.type");
}

}  // namespace
}  // namespace hos::platform
