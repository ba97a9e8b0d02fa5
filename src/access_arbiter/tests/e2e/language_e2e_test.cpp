// The dialog's language end to end, with the real executables on an X server of the test's own:
// hl-settingsd serves the non-persistent settings, hl-settings changes them as a person would,
// hl-appmgr (re)starts AccessArbiter, and hl-ask asks. What the shown window says is read from its
// pixels, compared with the reference image of each language, and the program's own log lines say
// which catalogue it installed and why.
#include "support/hosted_session.h"
#include "tests/support/differing_share.h"

#include <gtest/gtest.h>

#include <QImage>

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;
using access_arbiter::e2e::HostedSession;
using access_arbiter::testing::DifferingShare;

constexpr const char* kService = "hl.settings_manager.MSmgr";
constexpr const char* kLanguages[] = {"en-US", "ru-RU"};

class Language : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(HostedSession::StartDisplay()) << "Xvfb did not start"; }

    // Asks once and reads the shown dialog: the language whose reference image it matches (at most
    // half a percent of the pixels differ), or "none"; then declines, so the caller gets 1.
    std::string ShownLanguage() {
        auto ask = m_session.Ask({"--wait-for-service", "60000", "--timeout", "120000"});
        const std::string window = m_session.WaitShown(60s);
        if (window.empty()) {
            ADD_FAILURE() << "no dialog was shown\n" << m_session.Log();
            return "none";
        }
        std::this_thread::sleep_for(300ms);  // the first frame
        const std::string shot = m_session.Directory() + "/shown.png";
        std::system(("import -window " + window + " png:" + shot).c_str());
        const QImage actual(QString::fromStdString(shot));
        std::string shown = "none";
        for (const char* language : kLanguages) {
            const QImage reference(QStringLiteral(HL_SOURCE_DIR "/src/access_arbiter/tests/visual/reference/"
                                                                "dialog-%1.png")
                                       .arg(QLatin1String(language)));
            if (!actual.isNull() && DifferingShare(actual, reference, false) <= 0.005) {
                shown = language;
            }
        }
        if (shown == "none") {
            std::filesystem::create_directories(HL_BINARY_DIR "/visual-failures");
            std::filesystem::copy_file(shot, HL_BINARY_DIR "/visual-failures/language-shown.png",
                                       std::filesystem::copy_options::overwrite_existing);
        }
        m_session.Click(window, 86, 110);
        EXPECT_EQ(ask->Wait(60s), 1) << "the decline did not reach the caller";
        EXPECT_TRUE(m_session.WaitHidden(30s));
        return shown;
    }

    // The catalogue line of the program's log for `locale` (as QLocale names it: "en_US").
    static std::string Installed(const std::string& locale) {
        return "Installing the <" + locale +
               "> language translator for the resource <access_arbiter> completed";
    }

    HostedSession m_session;
};

TEST_F(Language, TheDialogFollowsTheLanguageSetWithTheSettingsToolFromItsNextStart) {
    // The service's shipped defaults hold "en-US".
    ASSERT_TRUE(m_session.Start()) << m_session.Log();
    EXPECT_EQ(ShownLanguage(), "en-US");
    EXPECT_EQ(m_session.CountInLog(Installed("en_US")), 1U) << m_session.Log();

    ASSERT_EQ(m_session.SettingsTool({"--service", kService, "set", "locale/language", "ru-RU"}), 0);
    // The running program keeps its language; the next start reads the new one.
    EXPECT_EQ(ShownLanguage(), "en-US");
    ASSERT_TRUE(m_session.Stop()) << m_session.Log();
    ASSERT_TRUE(m_session.Start()) << m_session.Log();
    EXPECT_EQ(ShownLanguage(), "ru-RU");
    EXPECT_EQ(m_session.CountInLog(Installed("ru_RU")), 1U) << m_session.Log();
    EXPECT_EQ(m_session.CountInLog("SMgr GetSettingValue"), 0U) << m_session.Log();
}

TEST_F(Language, AServiceThatIsNotThereYetIsWaitedForAndItsLanguageShown) {
    m_session.StartManager("restart=no\n");
    ASSERT_TRUE(m_session.WaitForLog("Connecting to hl.settings_manager.MSmgr settings manager", 60s))
        << m_session.Log();
    std::this_thread::sleep_for(3s);
    EXPECT_EQ(m_session.CountInLog("]: ReadyToShowUI"), 0U) << "the program went on without its settings";
    EXPECT_TRUE(m_session.Manager().Running());

    ASSERT_TRUE(m_session.StartSettings());
    ASSERT_TRUE(m_session.WaitForLog("]: ReadyToShowUI", 120s)) << m_session.Log();
    EXPECT_EQ(ShownLanguage(), "en-US");
}

// The session ends while the program still waits for its settings: the stop signal ends it at once,
// by the signal, with the platform's line; the manager needs no SIGKILL.
TEST_F(Language, AStopWhileTheServiceIsWaitedForEndsTheProgramByItsSignal) {
    m_session.StartManager("restart=no\n");
    ASSERT_TRUE(m_session.WaitForLog("Connecting to hl.settings_manager.MSmgr settings manager", 60s))
        << m_session.Log();
    m_session.Manager().Signal(SIGTERM);
    EXPECT_EQ(m_session.Manager().Wait(60s), 0);
    EXPECT_EQ(m_session.CountInLog("Hosted platform: signal 15 (Terminated) came before the event loop runs"),
              1U)
        << m_session.Log();
    EXPECT_EQ(m_session.CountInLog("]: killed by signal 15 (stopped)"), 1U) << m_session.Log();
    EXPECT_EQ(m_session.CountInLog("sending SIGKILL"), 0U) << m_session.Log();
}

// The connection is asked for every 100 ms, 3000 times: about five minutes.
TEST_F(Language, WithoutTheServiceTheStartFailsOnceTheConnectionAttemptsRunOut) {
    const auto started = std::chrono::steady_clock::now();
    m_session.StartManager("restart=no\n");
    ASSERT_TRUE(m_session.WaitForLog("]: FinishWithInternalError", 420s)) << m_session.Log();
    EXPECT_GE(std::chrono::steady_clock::now() - started, 290s);
    for (const char* line :
         {"Could not create settings manager proxy: ", "KnCmConnect() fail: hl.settings_manager.MSmgr.NkISM",
          "AccessArbiter start with error: ", "Failed to create non persistent settings manager",
          "]: FinishWithInternalError: Failed to start AccessArbiter"}) {
        EXPECT_EQ(m_session.CountInLog(line), 1U) << line << "\n" << m_session.Log();
    }
    EXPECT_EQ(m_session.CountInLog("]: ReadyToShowUI"), 0U);
    EXPECT_TRUE(m_session.WaitForLog("]: exited with status 1", 30s)) << m_session.Log();
    EXPECT_TRUE(m_session.ShownWindows().empty());
}

}  // namespace
