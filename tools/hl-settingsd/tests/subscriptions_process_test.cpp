// Update subscriptions of hl-settingsd as real processes: which subscriptions a change wakes and with
// which kind, a change seen by two subscriber processes, a subscriber killed while the other keeps
// receiving, and the client's callback thread when the service dies and comes back.
#include <settings_manager/creators.h>
#include <settings_manager/i_settings_update_observer.h>
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/path_to_str.h>
#include <settings_manager/setting.h>
#include <diagnostics/log_capture_for_testing.h>
#include <uvc/path_text.h>

#include "support/scoped_runtime_directory.h"
#include "support/settingsd_process.h"

#include <gtest/gtest.h>

#include <csignal>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using hos::platform::testing::PeerProcess;
using settings_manager::Setting;
using settings_manager::SettingMap;

constexpr const char* kService = "hl.settings_manager.MSmgr";

uvc::Path P(const char* text) {
    return uvc::FromString(text, settings_manager::meta::GetIdSpecification()).first;
}

class RecordingObserver final : public settings_manager::ISettingsUpdateObserver {
public:
    void OnUpdate(const uvc::Path& path, std::uint8_t upd) override {
        std::lock_guard lock(m_mutex);
        m_updates.push_back(settings_manager::PathToStr(path) + " " + std::to_string(upd));
        m_changed.notify_all();
    }
    std::vector<std::string> WaitFor(std::size_t count,
                                     std::chrono::milliseconds timeout = std::chrono::seconds(10)) {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, timeout, [&] { return m_updates.size() >= count; });
        return m_updates;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_updates;
};

class Subscriptions : public testing::Test {
protected:
    void SetUp() override {
        StartDaemon();
        Connect();
    }
    void StartDaemon() {
        m_daemon =
            // Debug level: the log then shows each Done, which the killed-subscriber test waits for.
            hl_settingsd::testing::SettingsdProcess::Start({"--log-level", "1", kService},
                                                           m_directory.Path() + "/settingsd.log");
        ASSERT_NE(m_daemon, nullptr);
    }
    void Connect() {
        ASSERT_EQ(vdi::common_utils::settings::CreateSettingsManagerNonPersistent(m_manager), 0);
        m_manager->GetSettingsSetter(m_setter);
        m_manager->GetSettingsValueSetter(m_valueSetter);
        m_manager->GetSettingsDeleter(m_deleter);
        m_manager->GetSettingsUpdateSubscriber(m_subscriber);
    }

    std::shared_ptr<RecordingObserver> Subscribe(const char* path) {
        auto observer = std::make_shared<RecordingObserver>();
        settings_manager::SubscriptionId sid;
        EXPECT_EQ(m_subscriber->Subscribe(P(path), observer, sid), 0);
        m_sids.push_back(sid);
        return observer;
    }
    void TearDown() override {
        for (const auto sid : m_sids) {
            m_subscriber->Unsubscribe(sid);
        }
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    std::unique_ptr<hl_settingsd::testing::SettingsdProcess> m_daemon;
    std::shared_ptr<settings_manager::ISettingsManager> m_manager;
    std::shared_ptr<settings_manager::ISettingsSetter> m_setter;
    std::shared_ptr<settings_manager::ISettingsValueSetter> m_valueSetter;
    std::shared_ptr<settings_manager::ISettingsDeleter> m_deleter;
    std::shared_ptr<settings_manager::ISettingsUpdateSubscriber> m_subscriber;
    std::vector<settings_manager::SubscriptionId> m_sids;
};

TEST_F(Subscriptions, AChangeWakesTheSubscriptionsAtAboveAndBelowItsPathWithItsKind) {
    auto locale = Subscribe("locale/");
    auto language = Subscribe("locale/language/");
    auto other = Subscribe("other/");
    auto root = Subscribe("");

    EXPECT_EQ(m_valueSetter->SetValue(P("locale/language/"), std::string("ru-RU")), 0);  // at and above
    EXPECT_EQ(m_setter->SetSetting(P("locale/"), Setting(SettingMap{})), 0);             // replaces below
    EXPECT_EQ(m_valueSetter->SetValue(P("locale/x/"), true), 0);
    EXPECT_EQ(m_setter->SetAttribute(P("locale/x/"), settings_manager::Attributes{true}), 0);
    EXPECT_EQ(m_deleter->DeleteSetting(P("locale/x/")), 0);
    EXPECT_EQ(m_deleter->DeleteSetting(P("locale/x/")), static_cast<std::int32_t>(0x8000004Cu));  // no change

    const std::vector<std::string> atLocale{"locale/language/ 1", "locale/ 1", "locale/x/ 1", "locale/x/ 3",
                                            "locale/x/ 2"};
    EXPECT_EQ(locale->WaitFor(5), atLocale);
    EXPECT_EQ(root->WaitFor(5), atLocale);
    EXPECT_EQ(language->WaitFor(2), (std::vector<std::string>{"locale/language/ 1", "locale/ 1"}));
    // Nothing more comes to the narrower or the unrelated subscription.
    EXPECT_EQ(language->WaitFor(3, std::chrono::milliseconds(500)).size(), 2u);
    EXPECT_TRUE(other->WaitFor(1, std::chrono::milliseconds(500)).empty());
}

TEST_F(Subscriptions, TwoSubscriberProcessesSeeAChangeAndAKilledOneIsDroppedWithoutDisturbingTheOther) {
    auto first = PeerProcess::Start({HL_SETTINGSD_SUBSCRIBER, kService, "locale/"});
    auto second = PeerProcess::Start({HL_SETTINGSD_SUBSCRIBER, kService, "locale/"});
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(m_valueSetter->SetValue(P("locale/language/"), std::string("de-DE")), 0);
    EXPECT_TRUE(first->WaitForLine("locale/language/ 1", std::chrono::seconds(10)));
    EXPECT_TRUE(second->WaitForLine("locale/language/ 1", std::chrono::seconds(10)));

    // Both have confirmed their update; then the first one's process ends, and its callback goes
    // with its connection, at once.
    ASSERT_TRUE(m_daemon->EventuallyCounts("Done $", 2)) << m_daemon->Log();
    first->Kill();
    EXPECT_TRUE(m_daemon->EventuallyCounts("has gone (its connection closed): dropped with its 1 subscriptions", 1))
        << m_daemon->Log();
    EXPECT_EQ(m_valueSetter->SetValue(P("locale/language/"), std::string("fr-FR")), 0);
    EXPECT_TRUE(second->WaitForLine("locale/language/ 1", std::chrono::seconds(10)));

    // The service goes on for the living one.
    EXPECT_EQ(m_valueSetter->SetValue(P("locale/language/"), std::string("it-IT")), 0);
    EXPECT_TRUE(second->WaitForLine("locale/language/ 1", std::chrono::seconds(10)));
}

// Two proxies of one service in one process share one callback: it is registered once, serves the
// subscriptions of both, and is unregistered only when the last proxy goes.
TEST_F(Subscriptions, TwoProxiesOfOneServiceShareOneCallbackThatTheLastOneUnregisters) {
    std::shared_ptr<settings_manager::ISettingsManager> second;
    ASSERT_EQ(vdi::common_utils::settings::CreateSettingsManagerNonPersistent(second), 0);
    std::shared_ptr<settings_manager::ISettingsUpdateSubscriber> secondSubscriber;
    ASSERT_EQ(second->GetSettingsUpdateSubscriber(secondSubscriber), 0);
    auto observer = std::make_shared<RecordingObserver>();
    settings_manager::SubscriptionId sid;
    ASSERT_EQ(secondSubscriber->Subscribe(P("locale/"), observer, sid), 0);
    EXPECT_EQ(m_valueSetter->SetValue(P("locale/language/"), std::string("de-DE")), 0);
    EXPECT_EQ(observer->WaitFor(1).size(), 1U);
    EXPECT_EQ(m_daemon->CountInLog(" registered on connection"), 1U) << m_daemon->Log();
    EXPECT_EQ(secondSubscriber->Unsubscribe(sid), 0);

    m_subscriber.reset();
    m_setter.reset();
    m_valueSetter.reset();
    m_deleter.reset();
    m_manager.reset();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(m_daemon->CountInLog(" unregistered with "), 0U) << "the first proxy to go took the callback";
    secondSubscriber.reset();
    second.reset();
    EXPECT_TRUE(m_daemon->EventuallyCounts(" unregistered with ", 1)) << m_daemon->Log();
}

// A subscriber stopped for longer than any Wait of its takes (SIGSTOP: a debugger, a frozen cgroup)
// keeps its callback, which lives as long as its connection: once continued it receives the update
// made meanwhile, and the next one.
TEST_F(Subscriptions, APausedSubscriberReceivesItsUpdatesOnceContinued) {
    auto paused = PeerProcess::Start({HL_SETTINGSD_SUBSCRIBER, kService, "locale/"});
    ASSERT_NE(paused, nullptr);
    ASSERT_EQ(::kill(paused->Pid(), SIGSTOP), 0);
    std::this_thread::sleep_for(std::chrono::seconds(11));
    EXPECT_EQ(m_valueSetter->SetValue(P("locale/language/"), std::string("nl-NL")), 0);
    ASSERT_EQ(::kill(paused->Pid(), SIGCONT), 0);
    EXPECT_TRUE(paused->WaitForLine("locale/language/ 1", std::chrono::seconds(10))) << m_daemon->Log();
    EXPECT_EQ(m_valueSetter->SetValue(P("locale/language/"), std::string("sv-SE")), 0);
    EXPECT_TRUE(paused->WaitForLine("locale/language/ 1", std::chrono::seconds(10))) << m_daemon->Log();
    EXPECT_FALSE(m_daemon->LogContains("dropped"));
}

// When the service goes away the client's callback thread reports each failed Wait and pauses; the
// client still stops cleanly, and a new one registers afresh with the restarted service, gets an update
// and confirms it with Done.
TEST_F(Subscriptions, AfterTheServiceDiesWaitFailuresRepeatAndANewClientOfTheRestartedOneGetsItsUpdates) {
    hos::logger::LogCaptureForTesting log;
    const auto failures = [&log](const char* text) {
        std::size_t count = 0;
        for (const auto& record : log.Records()) {
            count += record.message.find(text) != std::string::npos ? 1 : 0;
        }
        return count;
    };
    m_daemon->Kill();
    for (int i = 0; i < 100 && failures(": Wait call error: nk = ") < 2; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_GE(failures(": Wait call error: nk = "), 2u);

    ASSERT_NO_FATAL_FAILURE(StartDaemon());
    // The old client stops: its UnregCallback fails on the dead connection, the thread is joined.
    m_subscriber.reset();
    m_setter.reset();
    m_valueSetter.reset();
    m_deleter.reset();
    m_manager.reset();
    EXPECT_GE(failures(": UnregCallback call error: nk = "), 1u);

    ASSERT_NO_FATAL_FAILURE(Connect());
    auto observer = std::make_shared<RecordingObserver>();
    settings_manager::SubscriptionId sid;
    ASSERT_EQ(m_subscriber->Subscribe(P("test/"), observer, sid), 0);
    EXPECT_EQ(m_setter->SetSetting(P("test/x/"), Setting(true)), 0);
    EXPECT_EQ(observer->WaitFor(1), std::vector<std::string>{"test/x/ 1"});
    const std::string done = "request Done " + std::to_string(sid.value);
    for (int i = 0; i < 100 && !m_daemon->LogContains(done); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_TRUE(m_daemon->LogContains(done)) << m_daemon->Log();
    EXPECT_EQ(m_subscriber->Unsubscribe(sid), 0);
    EXPECT_EQ(m_subscriber->Unsubscribe(sid), static_cast<std::int32_t>(0x8000004Cu));
}

}  // namespace
