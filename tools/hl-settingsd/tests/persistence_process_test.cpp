// The persistent stores of hl-settingsd as real processes: the tree survives a restart in a file only
// the user can read, a kill -9 in the middle of long write exchanges leaves the old tree or the new
// one and never a mix, and a cancelled or abandoned exchange changes nothing.
#include <settings_manager/creators.h>
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/setting.h>
#include <uvc/path_text.h>

#include "support/raw_ism.h"
#include "support/scoped_runtime_directory.h"
#include "support/settingsd_process.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

namespace {

using hl_settingsd::testing::SettingsdProcess;
using settings_manager::Setting;
using settings_manager::SettingList;
using settings_manager::SettingMap;

constexpr const char* kService = "hl.settings_manager.PSmgr";
constexpr std::int32_t kNotFound = static_cast<std::int32_t>(0x8000004Cu);

uvc::Path P(const char* text) {
    return uvc::FromString(text, settings_manager::meta::GetIdSpecification()).first;
}

// A map of nodes entries, each a string that names the tree's tag, so that two trees differ in every
// node.
Setting Tree(std::size_t nodes, const std::string& tag) {
    SettingMap map;
    for (std::size_t i = 0; i < nodes; ++i) {
        map.emplace("n" + std::to_string(100000 + i), Setting(tag + std::string(120, '.')));
    }
    return map;
}

unsigned Mode(const std::string& file) {
    struct stat info {};
    return ::stat(file.c_str(), &info) == 0 ? (info.st_mode & 0777) : 0xFFFFu;
}

class Persistence : public testing::Test {
protected:
    std::unique_ptr<SettingsdProcess> Start(std::vector<std::string> arguments = {}) {
        if (arguments.empty()) {
            arguments = {"--state-dir", State(), kService};
        }
        auto daemon = SettingsdProcess::Start(arguments, m_directory.Path() + "/settingsd.log");
        EXPECT_NE(daemon, nullptr);
        return daemon;
    }
    std::string State() const { return m_directory.Path() + "/state"; }

    static std::shared_ptr<settings_manager::ISettingsManager> Connect() {
        std::shared_ptr<settings_manager::ISettingsManager> manager;
        EXPECT_EQ(vdi::common_utils::settings::CreateSettingsManagerPersistent(manager), 0);
        return manager;
    }
    static Setting Get(settings_manager::ISettingsManager& manager, const uvc::Path& path,
                       std::int32_t expected = 0) {
        std::shared_ptr<settings_manager::ISettingsGetter> getter;
        manager.GetSettingsGetter(getter);
        Setting setting;
        EXPECT_EQ(getter->GetSetting(path, setting), expected);
        return setting;
    }
    static std::int32_t Set(settings_manager::ISettingsManager& manager, const uvc::Path& path,
                            const Setting& setting) {
        std::shared_ptr<settings_manager::ISettingsSetter> setter;
        manager.GetSettingsSetter(setter);
        return setter->SetSetting(path, setting);
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
};

TEST_F(Persistence, TheTreeSurvivesARestartInAFileOnlyTheUserCanRead) {
    // Nothing set up but XDG_STATE_HOME: the program makes its directory and file itself.
    const std::string xdg = m_directory.Path() + "/xdg";
    ::setenv("XDG_STATE_HOME", xdg.c_str(), 1);
    auto daemon = Start({"hl.settings_manager.PSmgr"});
    ::unsetenv("XDG_STATE_HOME");
    ASSERT_NE(daemon, nullptr);
    const Setting tree = SettingMap{{"language", Setting(std::string("ru-RU"))},
                                    {"list", Setting(SettingList{Setting(std::int32_t{-1}), Setting(true)})},
                                    {"gone", Setting(2.5)}};
    {
        auto manager = Connect();
        ASSERT_EQ(Set(*manager, P("locale/"), tree), 0);
        std::shared_ptr<settings_manager::ISettingsSetter> setter;
        manager->GetSettingsSetter(setter);
        EXPECT_EQ(setter->SetAttribute(P("locale/list/1/"), settings_manager::Attributes{true}), 0);
        std::shared_ptr<settings_manager::ISettingsDeleter> deleter;
        manager->GetSettingsDeleter(deleter);
        EXPECT_EQ(deleter->DeleteSetting(P("locale/gone/")), 0);
    }
    daemon->Kill();

    const std::string file = xdg + "/halcyra/hl.settings_manager.PSmgr.db";
    EXPECT_EQ(Mode(xdg + "/halcyra"), 0700u);
    EXPECT_EQ(Mode(file), 0600u);
    for (const char* suffix : {"-wal", "-shm"}) {
        if (std::filesystem::exists(file + suffix)) {
            EXPECT_EQ(Mode(file + suffix), 0600u) << suffix;
        }
    }

    ::setenv("XDG_STATE_HOME", xdg.c_str(), 1);
    daemon = Start({"hl.settings_manager.PSmgr"});
    ::unsetenv("XDG_STATE_HOME");
    ASSERT_NE(daemon, nullptr);
    auto manager = Connect();
    Setting expected = SettingMap{{"language", Setting(std::string("ru-RU"))},
                                  {"list", Setting(SettingList{Setting(std::int32_t{-1}), Setting(true)})}};
    std::get<SettingList>(std::get<SettingMap>(expected).at("list"))[1].attributes.flag = true;
    EXPECT_TRUE(Get(*manager, P("locale/")) == expected);
    EXPECT_TRUE(daemon->LogContains("persistent, in " + file));
}

TEST_F(Persistence, AKillDuringLongWritesLeavesTheOldTreeOrTheNewOneNeverAMix) {
    const auto path = P("big/");
    auto daemon = Start();
    ASSERT_NE(daemon, nullptr);
    Setting committed = Tree(3000, "first");
    {
        auto manager = Connect();
        ASSERT_EQ(Set(*manager, path, committed), 0);
    }
    int oldSeen = 0;
    int newSeen = 0;
    for (const int delayMs : {0, 15, 40, 80, 150, 300, 600}) {
        SCOPED_TRACE(delayMs);
        const Setting next = Tree(3000, "round" + std::to_string(delayMs));
        {
            auto manager = Connect();
            std::thread writer([&] { Set(*manager, path, next); });
            std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
            daemon->Kill();
            writer.join();
        }
        daemon = Start();
        ASSERT_NE(daemon, nullptr);
        auto manager = Connect();
        const Setting read = Get(*manager, path);
        const bool isOld = read == committed;
        const bool isNew = read == next;
        EXPECT_TRUE(isOld || isNew) << "a tree that is neither the old nor the new one";
        oldSeen += isOld ? 1 : 0;
        newSeen += isNew ? 1 : 0;
        committed = read;
    }
    // Informational: which way the kills fell.
    RecordProperty("old_after_kill", oldSeen);
    RecordProperty("new_after_kill", newSeen);
}

TEST_F(Persistence, ACancelledOrAbandonedWriteExchangeChangesNothing) {
    auto daemon = Start();
    ASSERT_NE(daemon, nullptr);
    const Setting old = Tree(5, "old");
    auto manager = Connect();
    ASSERT_EQ(Set(*manager, P("keep/"), old), 0);

    // Cancelled after its first chunk; a WriteNext after the Cancel finds no exchange.
    const auto items = hl_settingsd::testing::Items("keep/", Tree(15, "new"));
    hl_settingsd::testing::RawIsm ism(kService);
    const auto opened = ism.Write("keep/", 6, items.size(), {items.begin(), items.begin() + 8});
    ASSERT_EQ(opened.rc, 0);
    EXPECT_EQ(ism.Cancel(opened.id), 0);
    EXPECT_EQ(ism.WriteNext(opened.id, {items.begin() + 8, items.end()}, true), kNotFound);
    EXPECT_TRUE(Get(*manager, P("keep/")) == old);

    // A client gone half-way through its exchange: its connection closes under the open write.
    {
        hl_settingsd::testing::RawIsm gone(kService);
        ASSERT_EQ(gone.Write("keep/", 6, items.size(), {items.begin(), items.begin() + 8}).rc, 0);
    }
    EXPECT_TRUE(Get(*manager, P("keep/")) == old);

    // And nothing of either reached the file.
    manager.reset();
    daemon->Kill();
    daemon = Start();
    ASSERT_NE(daemon, nullptr);
    manager = Connect();
    EXPECT_TRUE(Get(*manager, P("keep/")) == old);
}

}  // namespace
