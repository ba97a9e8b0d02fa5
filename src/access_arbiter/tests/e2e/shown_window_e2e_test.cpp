// The real program in a hosted session on an X server of the test's own: a client asks for a
// decision through the published service with the generated proxy, found by the registry's entry as
// any component would; the test reads what the shown window says (its pixels against the reference
// image of the default language, "ru-RU", the language setting having been deleted: an untranslated
// key or another text would not match) and clicks it with real X input events, then checks the byte
// received.
#include "ipc/stub/i_access_arbiter_component.h"
#include <ipc_runtime/connection_builder.h>
#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>
#include <platform/platform.h>

#include "support/hosted_session.h"
#include "tests/support/differing_share.h"

#include <gtest/gtest.h>

#include <QImage>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;
using access_arbiter::e2e::HostedSession;
using access_arbiter::testing::DifferingShare;
using Interface = hosipc::idl::stdcpp_v1::hl::access_arbiter::AccessArbiter;

constexpr const char* kServiceType = "hl.access_arbiter.AccessArbiter.accessArbiter";

class ShownWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HostedSession::StartDisplay()) << "Xvfb did not start";
        ASSERT_TRUE(m_session.StartSettings());
        ASSERT_EQ(
            m_session.SettingsTool({"--service", "hl.settings_manager.MSmgr", "delete", "locale/language"}),
            0);
    }

    // The generated proxy, connected as any component would: through the registry's entry.
    auto Connect() {
        shared::ipc_utils::ConnectionTarget target{};
        for (int attempt = 0; attempt < 1200 && !target.found; ++attempt) {
            target = shared::ipc_utils::FindConnectionTargetForType(kServiceType, 0xffffffffu);
            std::this_thread::sleep_for(target.found ? 0ms : 50ms);
        }
        EXPECT_TRUE(target.found) << "the program did not publish " << kServiceType;
        const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
            target.server, target.service, 5000, false);
        return hosipc_detail::idl_traits::MakeProxyImpl(
            connector, access_arbiter::stub::GetPureAppResourceProvider(),
            static_cast<hosipc_detail::idl_traits::ProxyBait<Interface>*>(nullptr));
    }

    HostedSession m_session;
};

TEST_F(ShownWindowTest, ThePersonReadsTheTranslatedDialogAndTheirClickIsTheByteTheCallerGets) {
    ASSERT_TRUE(m_session.Start()) << m_session.Log();
    auto proxy = Connect();
    ASSERT_NE(proxy, nullptr);
    const QImage reference(
        QStringLiteral(HL_SOURCE_DIR "/src/access_arbiter/tests/visual/reference/dialog-ru-RU.png"));
    // Approve is the right button, Decline the left one (dialog coordinates of 320 x 156).
    for (const auto& [x, expected] : {std::pair{234, 1}, std::pair{86, 0}}) {
        SCOPED_TRACE(expected == 1 ? "Approve" : "Decline");
        auto answer = std::async(std::launch::async, [&proxy] {
            unsigned char decision = 0xEE;
            proxy->GetUserDecision(decision);
            return static_cast<int>(decision);
        });
        const std::string window = m_session.WaitShown(60s);
        ASSERT_FALSE(window.empty()) << "no window was shown for the request\n" << m_session.Log();

        // Let the first frame settle, then compare what is on the screen with the reference.
        std::this_thread::sleep_for(300ms);
        const std::string shot = m_session.Directory() + "/shown.png";
        std::system(("import -window " + window + " png:" + shot).c_str());
        const QImage actual(QString::fromStdString(shot));
        ASSERT_FALSE(actual.isNull()) << "no screenshot of window " << window;
        const double share = DifferingShare(actual, reference, false);
        if (share > 0.005) {  // at most half a percent of the pixels may differ
            const std::string kept = HL_BINARY_DIR "/visual-failures/shown-window.png";
            std::filesystem::create_directories(HL_BINARY_DIR "/visual-failures");
            std::filesystem::copy_file(shot, kept, std::filesystem::copy_options::overwrite_existing);
            ADD_FAILURE() << "the shown window differs from the reference in " << share * 100
                          << "% of pixels; screenshot kept as " << kept;
        }

        m_session.Click(window, x, 110);
        ASSERT_EQ(answer.wait_for(60s), std::future_status::ready) << "the click did not answer the caller";
        EXPECT_EQ(answer.get(), expected);
        EXPECT_TRUE(m_session.WaitHidden(30s)) << "the click did not hide the window";
    }
}

// The program's own failure path: its server name is held by another server, so the dispatcher cannot
// be made and the start fails with the check's text.
TEST_F(ShownWindowTest, AHeldServerNameFailsTheStartWithTheDispatcherText) {
    unsigned int id = 0;
    const unsigned int held = ServiceLocatorRegister("accessArbiter_id", nullptr, 0, &id);
    ASSERT_NE(held, NK_INVALID_HANDLE);
    m_session.StartManager("restart=no\n");
    EXPECT_TRUE(m_session.WaitForLog("Failed to create ipc dispatcher!", 120s)) << m_session.Log();
    EXPECT_EQ(m_session.CountInLog("AccessArbiter start with error"), 1U) << m_session.Log();
    EXPECT_EQ(m_session.CountInLog("]: ReadyToShowUI"), 0U);
    KnHandleClose(held);
    ServiceLocatorUnregister(id);
}

}  // namespace
