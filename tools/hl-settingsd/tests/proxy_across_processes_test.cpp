// The settings client against hl-settingsd in a process of its own, over the hosted platform's
// channels: the chunked write and read exchanges at their edges (the requests as the service logs
// them), failures of the service and of the connection, and the creator that finds the
// non-persistent service by name.
#include <settings_manager/creators.h>
#include <settings_manager/ipc/create_settings_manager.h>
#include <settings_manager/ipc/settings_manager_proxy.h>
#include <settings_manager/setting.h>
#include <uvc/set_item.h>

#include <diagnostics/log_capture_for_testing.h>

#include "support/scoped_runtime_directory.h"
#include "support/settingsd_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using settings_manager::Setting;
using settings_manager::SettingMap;

constexpr const char* kService = "hl.settings_manager.MSmgr";
constexpr std::int32_t kCallFailed = static_cast<std::int32_t>(0x80000059u);
constexpr std::int32_t kArenaFailed = static_cast<std::int32_t>(0x80000062u);
constexpr std::int32_t kServiceRefused = static_cast<std::int32_t>(0x80000046u);
constexpr std::int32_t kWrongData = static_cast<std::int32_t>(0x80000074u);

// A map of nodes - 1 string children: nodes in all with its root.
Setting Tree(std::size_t nodes, std::size_t valueBytes = 4) {
    Setting root = SettingMap{};
    for (std::size_t i = 1; i < nodes; ++i) {
        uvc::SetItem(root, "n" + std::to_string(100 + i), Setting(std::string(valueBytes, 'v')),
                     uvc::SetItemInsert);
    }
    return root;
}

uvc::Path At(const std::string& name) {
    return uvc::Path(uvc::Root).Append("test").Append(name);
}

class ProxyAcrossProcesses : public testing::Test {
protected:
    // hl-settingsd at debug level, which logs each request; `fault` for --fault-for-testing.
    void Start(const std::string& fault = {}) {
        std::vector<std::string> arguments{"--log-level", "1"};
        if (!fault.empty()) {
            arguments.insert(arguments.end(), {"--fault-for-testing", fault});
        }
        arguments.push_back(kService);
        m_server = hl_settingsd::testing::SettingsdProcess::Start(arguments, m_directory.Path() + "/settingsd.log");
        ASSERT_NE(m_server, nullptr);
        ASSERT_EQ(vdi::common_utils::settings::CreateSettingsManagerNonPersistent(m_manager), 0);
        ASSERT_EQ(m_manager->GetSettingsSetter(m_setter), 0);
        ASSERT_EQ(m_manager->GetSettingsGetter(m_getter), 0);
    }

    // The requests the service logged since the last transcript, up to (not including) the Delete
    // that marks the end.
    std::vector<std::string> Transcript() {
        std::shared_ptr<settings_manager::ISettingsDeleter> deleter;
        m_manager->GetSettingsDeleter(deleter);
        deleter->DeleteSetting(At("marker"));
        std::vector<std::string> requests = m_server->Requests();
        for (int i = 0; i < 100 && std::count(requests.begin(), requests.end(), "Delete") <= m_transcripts; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            requests = m_server->Requests();
        }
        std::vector<std::string> lines;
        int deletes = 0;
        for (const std::string& request : requests) {
            if (request == "Delete") {
                ++deletes;
            } else if (deletes == m_transcripts) {
                lines.push_back(request);
            }
        }
        ++m_transcripts;
        return lines;
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    std::unique_ptr<hl_settingsd::testing::SettingsdProcess> m_server;
    int m_transcripts = 0;
    std::shared_ptr<settings_manager::ISettingsManager> m_manager;
    std::shared_ptr<settings_manager::ISettingsSetter> m_setter;
    std::shared_ptr<settings_manager::ISettingsGetter> m_getter;
};

TEST_F(ProxyAcrossProcesses, WritesGoOutInChunksOfEightAndReadBackWhole) {
    ASSERT_NO_FATAL_FAILURE(Start());
    const struct {
        std::size_t nodes;
        std::vector<std::string> requests;
    } cases[] = {
        {1, {"Write 1"}},
        {8, {"Write 8"}},
        {9, {"Write 8", "WriteNext 1 last=1"}},
        {16, {"Write 8", "WriteNext 8 last=1"}},
        {17, {"Write 8", "WriteNext 8 last=0", "WriteNext 1 last=1"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.nodes);
        const auto path = At("t" + std::to_string(c.nodes));
        const Setting tree = Tree(c.nodes);
        EXPECT_EQ(m_setter->SetSetting(path, tree), 0);
        EXPECT_EQ(Transcript(), c.requests);

        // The service answers eight nodes at a time: ReadNext until its last flag.
        Setting read;
        EXPECT_EQ(m_getter->GetSetting(path, read), 0);
        EXPECT_TRUE(read == tree);
        std::vector<std::string> reads{"Read"};
        for (std::size_t sent = 8; sent < c.nodes; sent += 8) {
            reads.push_back("ReadNext");
        }
        EXPECT_EQ(Transcript(), reads);
    }
}

TEST_F(ProxyAcrossProcesses, WhatDoesNotFitAnArenaFailsBeforeOrWithACancel) {
    ASSERT_NO_FATAL_FAILURE(Start());
    hos::logger::LogCaptureForTesting log;
    // A value block over 8192 bytes first in the tree: nothing reaches the service.
    Setting big(std::string(9000, 'x'));
    EXPECT_EQ(m_setter->SetSetting(At("big"), big), kArenaFailed);
    EXPECT_TRUE(log.Contains(": Write request arena fail"));
    EXPECT_EQ(Transcript(), std::vector<std::string>{});

    // The same node fourth in the tree: the three before it go out in the Write, the WriteNext that
    // would carry it can't be built, and the exchange ends with one Cancel.
    Setting tree = Tree(3);
    uvc::SetItem(tree, "n999", Setting(std::string(9000, 'x')), uvc::SetItemInsert);
    EXPECT_EQ(m_setter->SetSetting(At("late"), tree), kArenaFailed);
    EXPECT_TRUE(log.Contains(": WriteNext request arena fail"));
    EXPECT_EQ(Transcript(), (std::vector<std::string>{"Write 3", "Cancel"}));

    // A path text of 512 bytes goes out, one of 513 doesn't, for Delete too.
    std::shared_ptr<settings_manager::ISettingsDeleter> deleter;
    m_manager->GetSettingsDeleter(deleter);
    const uvc::Path fits = uvc::Path(uvc::Root).Append(std::string(511, 'p'));
    const uvc::Path over = uvc::Path(uvc::Root).Append(std::string(512, 'p'));
    EXPECT_EQ(m_setter->SetSetting(fits, Setting(true)), 0);
    EXPECT_EQ(m_setter->SetSetting(over, Setting(true)), kArenaFailed);
    EXPECT_EQ(deleter->DeleteSetting(over), kArenaFailed);
    EXPECT_TRUE(log.Contains(": Delete request arena fail"));
    EXPECT_EQ(Transcript(), std::vector<std::string>{"Write 1"});
}

TEST_F(ProxyAcrossProcesses, AServiceErrorInWriteNextGivesExactlyOneCancelAndItsCode) {
    ASSERT_NO_FATAL_FAILURE(Start("writenext-refused"));
    hos::logger::LogCaptureForTesting log;
    EXPECT_EQ(m_setter->SetSetting(At("t17"), Tree(17)), kServiceRefused);
    EXPECT_EQ(Transcript(), (std::vector<std::string>{"Write 8", "WriteNext 8 last=0", "Cancel"}));
    EXPECT_TRUE(log.Contains(": WriteNext call error: nk = 0, hca = "));
}

TEST_F(ProxyAcrossProcesses, AServiceThatDiesMidExchangeGivesAnErrorNotAHang) {
    ASSERT_NO_FATAL_FAILURE(Start("writenext-exit"));
    hos::logger::LogCaptureForTesting log;
    EXPECT_EQ(m_setter->SetSetting(At("t9"), Tree(9)), kCallFailed);
    EXPECT_TRUE(log.Contains(": WriteNext call error: nk = "));
    Setting read;
    EXPECT_EQ(m_getter->GetSetting(At("t9"), read), kCallFailed);
    EXPECT_TRUE(log.Contains(": Read call error: nk = "));
}

// A service whose read answers don't add up: the read fails with its code and text, leaves the
// caller's setting as it was, and cancels only an exchange that is still open.
TEST_F(ProxyAcrossProcesses, ReadAnswersThatDoNotAddUpFailWithTheirCodeAndCancelOnlyAnOpenExchange) {
    const struct {
        const char* fault;
        std::size_t nodes;
        std::int32_t result;
        const char* text;
        std::vector<std::string> requests;
    } cases[] = {
        {"read-count-zero", 3, static_cast<std::int32_t>(0x80000101u), " -> Deserialize = ", {"Read"}},
        {"read-count-short", 3, kWrongData, " -> wrong RawSetting size: fact/plan = 3/2 ", {"Read"}},
        {"readnext-bad-list", 12, kArenaFailed, ": ReadNext response arena fail", {"Read", "ReadNext", "Cancel"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        m_setter.reset();
        m_getter.reset();
        m_manager.reset();
        m_server.reset();  // its log goes on in the next one's, and the transcripts with it
        ASSERT_NO_FATAL_FAILURE(Start(c.fault));
        hos::logger::LogCaptureForTesting log;
        ASSERT_EQ(m_setter->SetSetting(At("t"), Tree(c.nodes)), 0);
        Transcript();
        Setting read(std::string("kept"));
        EXPECT_EQ(m_getter->GetSetting(At("t"), read), c.result);
        EXPECT_TRUE(read == Setting(std::string("kept")));
        EXPECT_TRUE(log.Contains(c.text));
        EXPECT_EQ(Transcript(), c.requests);
    }
}

// Interfaces are handed out as shared_ptrs of the proxy itself: one that no shared_ptr owns has
// none to give, and says so with a code instead of an exception.
TEST_F(ProxyAcrossProcesses, AProxyThatNoSharedPtrOwnsRefusesItsInterfacesWithACode) {
    ASSERT_NO_FATAL_FAILURE(Start());
    hos::logger::LogCaptureForTesting log;
    settings_manager::ipc::SettingsManagerProxy proxy(
        settings_manager::ipc::SettingsManagerCmConfig{kService, 5000});
    std::shared_ptr<settings_manager::ISettingsGetter> getter;
    EXPECT_EQ(proxy.GetSettingsGetter(getter), static_cast<std::int32_t>(0x80000001u));
    EXPECT_EQ(getter, nullptr);
    EXPECT_TRUE(log.Contains(" Could not get interface: bad_weak_ptr")) << log.Records().size();
}

}  // namespace
