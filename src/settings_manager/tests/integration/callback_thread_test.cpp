// The callback thread of a settings client against a settings service in a process of its own: an
// update reaches the observer and is confirmed with Done; when the service goes away the thread
// reports each failed Wait and pauses, and the client still stops cleanly and connects again to the
// restarted service.
#include <settings_manager/creators.h>
#include <settings_manager/i_settings_update_observer.h>
#include <settings_manager/path_to_str.h>
#include <settings_manager/setting.h>

#include <diagnostics/log_capture_for_testing.h>

#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"

#include <gtest/gtest.h>

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

constexpr const char* kService = "hl.settings_manager.MSmgr";

class RecordingObserver final : public settings_manager::ISettingsUpdateObserver {
public:
    void OnUpdate(const uvc::Path& path, std::uint8_t upd) override {
        std::lock_guard lock(m_mutex);
        m_updates.push_back(settings_manager::PathToStr(path) + " " + std::to_string(upd));
        m_changed.notify_all();
    }
    std::vector<std::string> WaitFor(std::size_t count) {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, std::chrono::seconds(10), [&] { return m_updates.size() >= count; });
        return m_updates;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_updates;
};

std::size_t CountLines(const hos::logger::LogCaptureForTesting& log, const std::string& text) {
    std::size_t count = 0;
    for (const auto& record : log.Records()) {
        count += record.message.find(text) != std::string::npos ? 1 : 0;
    }
    return count;
}

std::shared_ptr<settings_manager::ISettingsManager> Connect() {
    std::shared_ptr<settings_manager::ISettingsManager> manager;
    EXPECT_EQ(vdi::common_utils::settings::CreateSettingsManagerNonPersistent(manager), 0);
    return manager;
}

// Subscribes to "test/", writes below it and returns what the observer saw.
std::vector<std::string> UpdateRoundTrip(settings_manager::ISettingsManager& manager, PeerProcess& server) {
    std::shared_ptr<settings_manager::ISettingsUpdateSubscriber> subscriber;
    std::shared_ptr<settings_manager::ISettingsSetter> setter;
    manager.GetSettingsUpdateSubscriber(subscriber);
    manager.GetSettingsSetter(setter);
    auto observer = std::make_shared<RecordingObserver>();
    settings_manager::SubscriptionId sid;
    EXPECT_EQ(subscriber->Subscribe(uvc::Path(uvc::Root).Append("test"), observer, sid), 0);
    EXPECT_NE(sid.value, 0u);
    EXPECT_EQ(setter->SetSetting(uvc::Path(uvc::Root).Append("test").Append("x"), Setting(true)), 0);
    const auto updates = observer->WaitFor(1);
    EXPECT_TRUE(server.WaitForLine("Done " + std::to_string(sid.value), std::chrono::seconds(10)));
    EXPECT_EQ(subscriber->Unsubscribe(sid), 0);
    EXPECT_EQ(subscriber->Unsubscribe(sid), static_cast<std::int32_t>(0x8000004Cu));
    return updates;
}

TEST(CallbackThread, AfterTheServiceDiesWaitFailuresRepeatWithPausesAndTheClientStopsAndReconnects) {
    hos::platform::testing::ScopedRuntimeDirectory directory;
    auto server = PeerProcess::Start({HL_SETTINGS_TEST_SERVER, kService});
    ASSERT_NE(server, nullptr);
    auto manager = Connect();
    ASSERT_NE(manager, nullptr);

    hos::logger::LogCaptureForTesting log;
    server->Kill();
    // Each failed Wait is reported, then the thread pauses and calls again on its connection.
    for (int i = 0; i < 100 && CountLines(log, ": Wait call error: nk = ") < 2; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_GE(CountLines(log, ": Wait call error: nk = "), 2u);

    server = PeerProcess::Start({HL_SETTINGS_TEST_SERVER, kService});
    ASSERT_NE(server, nullptr);
    // The old client stops: its UnregCallback fails on the dead connection, the thread is joined.
    manager.reset();
    EXPECT_GE(CountLines(log, ": UnregCallback call error: nk = "), 1u);
    // A new client registers afresh with the restarted service and gets its updates.
    manager = Connect();
    ASSERT_NE(manager, nullptr);
    EXPECT_EQ(UpdateRoundTrip(*manager, *server), std::vector<std::string>{"test/x/ 1"});
}

}  // namespace
