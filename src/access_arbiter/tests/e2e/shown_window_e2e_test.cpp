// The real program on a real X server: a client asks for a decision through the published service,
// the test reads what the shown window says (its pixels against the reference image of the
// default language, "ru-RU": an untranslated key or another text would not match) and clicks it with real X
// input events, then checks the byte received. A settings service without the language setting runs
// beside it under the non-persistent service's name, so the default language is shown.
#include <access_arbiter/ipc/stub/i_access_arbiter_component.h>
#include <ipc_runtime/connection_builder.h>
#include <ipc_runtime/idl/hl/access_arbiter/access_arbiter.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>
#include <platform/platform.h>

#include "support/peer_process.h"
#include "tests/support/differing_share.h"

#include <gtest/gtest.h>

#include <QImage>

#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <string>
#include <thread>

extern char** environ;

namespace {

using namespace std::chrono_literals;
using access_arbiter::testing::DifferingShare;
using Interface = hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;

constexpr const char* kServiceType = "hl.access_arbiter.AccessArbiter.accessArbiter";

// The settings service the program reads its language from, with nothing set.
std::unique_ptr<hos::platform::testing::PeerProcess> StartSettings() {
    return hos::platform::testing::PeerProcess::Start({HL_SETTINGS_TEST_SERVER, "hl.settings_manager.MSmgr"});
}
std::string Shell(const std::string& command) {
    std::string output;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[256];
        while (std::fgets(buffer, sizeof(buffer), pipe) != nullptr) {
            output += buffer;
        }
        pclose(pipe);
    }
    while (!output.empty() && (output.back() == '\n' || output.back() == ' ')) {
        output.pop_back();
    }
    return output;
}

class ShownWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (std::getenv("DISPLAY") == nullptr || *std::getenv("DISPLAY") == '\0') {
            GTEST_SKIP() << "DISPLAY is not set: this test needs an X server (run ctest under xvfb-run -a)";
        }
        char pattern[] = "/tmp/hl-shown-window-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_runtimeDir = pattern;
        setenv("HL_RUNTIME_DIR", m_runtimeDir.c_str(), 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        m_settings = StartSettings();
        ASSERT_NE(m_settings, nullptr) << "the settings service didn't come up";
        // As in a session: the application manager starts the program and is its parent.
        char* argv[] = {const_cast<char*>("hl-appmgr"),
                        const_cast<char*>("run"),
                        const_cast<char*>("--restart"),
                        const_cast<char*>("no"),
                        const_cast<char*>("--"),
                        const_cast<char*>(HL_ACCESS_ARBITER_EXECUTABLE),
                        nullptr};
        ASSERT_EQ(posix_spawn(&m_pid, HL_APPMGR_EXECUTABLE, nullptr, nullptr, argv, environ), 0);
    }

    void TearDown() override {
        if (m_pid > 0) {
            // The manager ends its applications on SIGTERM; the program alone simply dies of it.
            kill(m_pid, SIGTERM);
            for (int attempt = 0; attempt < 200 && waitpid(m_pid, nullptr, WNOHANG) == 0; ++attempt) {
                std::this_thread::sleep_for(50ms);
            }
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        if (!m_runtimeDir.empty()) {
            std::filesystem::remove_all(m_runtimeDir);
        }
    }

    // The generated proxy, connected as any component would: through the registry's entry.
    auto Connect() {
        shared::ipc_utils::ConnectionTarget target{};
        const auto deadline = std::chrono::steady_clock::now() + 120s;  // slow under the sanitizers
        while (!(target = shared::ipc_utils::FindConnectionTargetForType(kServiceType, 0xffffffffu)).found &&
               std::chrono::steady_clock::now() < deadline && waitpid(m_pid, nullptr, WNOHANG) == 0) {
            std::this_thread::sleep_for(50ms);
        }
        EXPECT_TRUE(target.found) << "the program did not publish " << kServiceType;
        m_server = target.server;
        m_service = target.service;
        const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
            m_server, m_service, 5000, false);
        return hosipc_detail::idl_traits::MakeProxyImpl(
            connector, access_arbiter::stub::GetPureAppResourceProvider(),
            static_cast<hosipc_detail::idl_traits::ProxyBait<Interface>*>(nullptr));
    }

    // The program's process: the one started, or the manager's child.
    std::string ProgramPid() const { return Shell("pgrep -P " + std::to_string(m_pid) + " | head -n 1"); }

    // The program's visible window, waited for up to 60 s; empty when none appeared.
    std::string ShownWindow() const {
        return Shell("timeout 60 xdotool search --sync --onlyvisible --pid " + ProgramPid() +
                     " 2>/dev/null | head -n 1");
    }

    // Waits until the window is no longer viewable.
    bool WaitHidden(const std::string& window) const {
        for (int attempt = 0; attempt < 200; ++attempt) {
            if (Shell("xwininfo -id " + window + " 2>/dev/null | grep -c IsViewable") == "0") {
                return true;
            }
            std::this_thread::sleep_for(50ms);
        }
        return false;
    }

    std::string m_runtimeDir;
    std::unique_ptr<hos::platform::testing::PeerProcess> m_settings;
    std::string m_server;
    std::string m_service;
    pid_t m_pid = -1;
};

TEST_F(ShownWindowTest, ThePersonReadsTheTranslatedDialogAndTheirClickIsTheByteTheCallerGets) {
    auto proxy = Connect();
    ASSERT_NE(proxy, nullptr);
    // Approve is the right button, Decline the left one (dialog coordinates of 320 x 156).
    for (const auto& [x, expected] : {std::pair{235, 1}, std::pair{85, 0}}) {
        SCOPED_TRACE(expected == 1 ? "Approve" : "Decline");
        auto answer = std::async(std::launch::async, [&proxy] {
            unsigned char decision = 0xEE;
            proxy->GetUserDecision(decision);
            return static_cast<int>(decision);
        });
        const std::string window = ShownWindow();
        ASSERT_FALSE(window.empty()) << "no window was shown for the request";

        // Let the first frame settle, then compare what is on the screen with the reference.
        std::this_thread::sleep_for(300ms);
        const std::string shot = m_runtimeDir + "/shown.png";
        Shell("import -window " + window + " png:" + shot);
        const QImage actual(QString::fromStdString(shot));
        const QImage expectedImage(
            QStringLiteral(HL_SOURCE_DIR "/src/access_arbiter/tests/visual/reference/dialog-ru-RU.png"));
        ASSERT_FALSE(actual.isNull()) << "no screenshot of window " << window;
        const double share = DifferingShare(actual, expectedImage, false);
        if (share > 0.005) {  // at most half a percent of the pixels may differ
            const std::string kept = HL_BINARY_DIR "/visual-failures/shown-window.png";
            std::filesystem::create_directories(HL_BINARY_DIR "/visual-failures");
            std::filesystem::copy_file(shot, kept, std::filesystem::copy_options::overwrite_existing);
            ADD_FAILURE() << "the shown window differs from the reference in " << share * 100
                          << "% of pixels; screenshot kept as " << kept;
        }

        Shell("xdotool mousemove --window " + window + " " + std::to_string(x) + " 118 click 1");
        ASSERT_EQ(answer.wait_for(60s), std::future_status::ready) << "the click did not answer the caller";
        EXPECT_EQ(answer.get(), expected);
        EXPECT_TRUE(WaitHidden(window)) << "the click did not hide the window";
    }
}

// The program's own failure path at step 20: its server name is held by another server, so the
// dispatcher cannot be made and the start fails with the check's text.
TEST(ProgramStartTest, AHeldServerNameFailsTheStartWithTheDispatcherText) {
    char pattern[] = "/tmp/hl-held-name-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const std::string runtimeDir = pattern;
    setenv("HL_RUNTIME_DIR", runtimeDir.c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const auto settings = StartSettings();
    ASSERT_NE(settings, nullptr) << "the settings service didn't come up";
    unsigned int id = 0;
    const unsigned int held = ServiceLocatorRegister("accessArbiter_id", nullptr, 0, &id);
    ASSERT_NE(held, NK_INVALID_HANDLE);
    const std::string program =
        std::string(HL_APPMGR_EXECUTABLE) + " run --restart no -- " + HL_ACCESS_ARBITER_EXECUTABLE;
    // The manager goes on after its application has failed, so it is ended once the line is there.
    const std::string log = runtimeDir + "/start.log";
    const std::string command =
        "timeout 120 " + program + " >" + log +
        " 2>&1 & pid=$!; timeout 120 sh -c \"until grep -q 'Failed to create ipc dispatcher!' " + log +
        "; do sleep 0.1; done\"; kill $pid 2>/dev/null; wait $pid; grep -m 1 'Failed to create ipc "
        "dispatcher!' " +
        log;
    const std::string line = Shell(command);
    EXPECT_NE(line.find("AccessArbiter start with error"), std::string::npos) << line;
    KnHandleClose(held);
    ServiceLocatorUnregister(id);
    std::filesystem::remove_all(runtimeDir);
}

}  // namespace
