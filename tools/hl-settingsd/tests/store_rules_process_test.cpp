// hl-settingsd serving the non-persistent store, as a real process, through the settings client: the
// service's own rules (write modes, missing branches, lists, attributes, the root) as decided in
// docs/settings.md. Its shipped defaults are read and changed by hl-settings' and the language's
// end-to-end tests.
#include <settings_manager/creators.h>
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/setting.h>
#include <uvc/path_text.h>

#include "support/scoped_runtime_directory.h"
#include "support/settingsd_process.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using settings_manager::Setting;
using settings_manager::SettingList;
using settings_manager::SettingMap;

constexpr std::int32_t kInvalidArgument = static_cast<std::int32_t>(0x80000046u);
constexpr std::int32_t kNotMatched = static_cast<std::int32_t>(0x8000004Au);
constexpr std::int32_t kNotFound = static_cast<std::int32_t>(0x8000004Cu);
constexpr std::int32_t kFound = static_cast<std::int32_t>(0x8000004Du);

// A path from its text form ("n/2/").
uvc::Path P(const char* text) {
    return uvc::FromString(text, settings_manager::meta::GetIdSpecification()).first;
}

Setting Flagged(Setting setting) {
    setting.attributes.flag = true;
    return setting;
}

class StoreRules : public testing::Test {
protected:
    void SetUp() override {
        // Nothing but the service name: the program finds its shipped defaults itself.
        m_daemon = hl_settingsd::testing::SettingsdProcess::Start({"hl.settings_manager.MSmgr"},
                                                                  m_directory.Path() + "/settingsd.log");
        ASSERT_NE(m_daemon, nullptr);
        ASSERT_EQ(vdi::common_utils::settings::CreateSettingsManagerNonPersistent(m_manager), 0);
        m_manager->GetSettingsGetter(m_getter);
        m_manager->GetSettingsSetter(m_setter);
        m_manager->GetSettingsValueSetter(m_valueSetter);
        m_manager->GetSettingsCreator(m_creator);
        m_manager->GetSettingsDeleter(m_deleter);
    }

    Setting Get(const uvc::Path& path, std::int32_t expected = 0) {
        Setting setting;
        EXPECT_EQ(m_getter->GetSetting(path, setting), expected);
        return setting;
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    std::unique_ptr<hl_settingsd::testing::SettingsdProcess> m_daemon;
    std::shared_ptr<settings_manager::ISettingsManager> m_manager;
    std::shared_ptr<settings_manager::ISettingsGetter> m_getter;
    std::shared_ptr<settings_manager::ISettingsSetter> m_setter;
    std::shared_ptr<settings_manager::ISettingsValueSetter> m_valueSetter;
    std::shared_ptr<settings_manager::ISettingsCreator> m_creator;
    std::shared_ptr<settings_manager::ISettingsDeleter> m_deleter;
};

TEST_F(StoreRules, WritesFollowTheModeAndCreateMissingBranches) {
    // Create refuses an existing node and leaves it alone.
    EXPECT_EQ(m_creator->CreateSetting(P("locale/language/"), Setting(std::string("de-DE"))), kFound);
    EXPECT_TRUE(Get(P("locale/language/")) == Setting(std::string("en-US")));
    EXPECT_EQ(m_creator->CreateSetting(P("fresh/"), Flagged(std::int32_t{7})), 0);
    EXPECT_TRUE(Get(P("fresh/")) == Flagged(std::int32_t{7}));

    // A write below nodes that don't exist makes them: maps above names, lists above numbers.
    EXPECT_EQ(m_valueSetter->SetValue(P("a/b/c/"), std::int64_t{5}), 0);
    Setting expectedA = SettingMap{{"b", Setting(SettingMap{{"c", Setting(std::int64_t{5})}})}};
    EXPECT_TRUE(Get(P("a/")) == expectedA);
    EXPECT_EQ(m_valueSetter->SetValue(P("n/2/"), true), 0);
    EXPECT_TRUE(Get(P("n/")) == Setting(SettingList{Setting{}, Setting{}, Setting(true)}));

    // Through a scalar, or a map reached by a number: refused, nothing changes.
    EXPECT_EQ(m_valueSetter->SetValue(P("locale/language/x/"), true), kNotMatched);
    EXPECT_EQ(m_valueSetter->SetValue(P("a/0/"), true), kNotMatched);
    EXPECT_TRUE(Get(P("a/")) == expectedA);

    // The root stays a map.
    EXPECT_EQ(m_valueSetter->SetValue(uvc::Root, std::int32_t{1}), kInvalidArgument);
    EXPECT_EQ(m_creator->CreateSetting(uvc::Root, Setting(SettingMap{})), kFound);
}

TEST_F(StoreRules, SetValueKeepsAttributesSetSettingWritesThem) {
    const auto path = P("flags/");
    const Setting flagged = Flagged(SettingMap{{"old", Flagged(std::int32_t{1})}});
    ASSERT_EQ(m_setter->SetSetting(path, flagged), 0);
    EXPECT_TRUE(Get(path) == flagged);

    // SetValue: nodes that were there keep their flags, new ones get cleared flags.
    EXPECT_EQ(m_valueSetter->SetValue(
                  path, SettingMap{{"old", Setting(std::int32_t{2})}, {"new", Flagged(std::int32_t{3})}}),
              0);
    EXPECT_TRUE(Get(path) ==
                Flagged(SettingMap{{"new", Setting(std::int32_t{3})}, {"old", Flagged(std::int32_t{2})}}));

    // SetSetting writes them as sent; the attribute calls read and write one node's flag.
    EXPECT_EQ(m_setter->SetSetting(path, Setting(SettingMap{{"old", Setting(std::int32_t{4})}})), 0);
    EXPECT_TRUE(Get(path) == Setting(SettingMap{{"old", Setting(std::int32_t{4})}}));
    EXPECT_EQ(m_setter->SetAttribute(P("flags/old/"), settings_manager::Attributes{true}), 0);
    settings_manager::Attributes attributes;
    EXPECT_EQ(m_getter->GetAttribute(P("flags/old/"), attributes), 0);
    EXPECT_TRUE(attributes.flag);
    EXPECT_EQ(m_getter->GetAttribute(P("flags/missing/"), attributes), kNotFound);
}

TEST_F(StoreRules, DeletingAListElementMovesTheLaterOnesUpAndDeletingTheRootEmptiesIt) {
    ASSERT_EQ(
        m_setter->SetSetting(P("l/"), Setting(SettingList{Setting(std::int32_t{0}), Setting(std::int32_t{1}),
                                                          Setting(std::int32_t{2})})),
        0);
    EXPECT_EQ(m_deleter->DeleteSetting(P("l/1/")), 0);
    EXPECT_TRUE(Get(P("l/")) == Setting(SettingList{Setting(std::int32_t{0}), Setting(std::int32_t{2})}));
    EXPECT_EQ(m_deleter->DeleteSetting(P("l/2/")), kNotFound);

    EXPECT_EQ(m_deleter->DeleteSetting(uvc::Root), 0);
    EXPECT_TRUE(Get(uvc::Root) == Setting(SettingMap{}));
}

}  // namespace
