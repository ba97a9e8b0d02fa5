// Tests that the typed read helper returns the value or the default with the documented log line.
#include <settings_manager/setting_paths.h>
#include <settings_manager/sm_utils.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using settings_manager::Setting;

class FakeGetter : public settings_manager::ISettingsGetter {
public:
    FakeGetter(int result, Setting setting) : m_result(result), m_setting(std::move(setting)) {}
    std::int32_t GetAttribute(const uvc::Path&, settings_manager::Attributes&) const override { return -1; }
    std::int32_t GetSetting(const uvc::Path&, Setting& setting) const override {
        if (m_result >= 0) {
            setting = m_setting;
        }
        return m_result;
    }

private:
    int m_result;
    Setting m_setting;
};

TEST(GetSettingValue, ReturnsTheStringOrTheDefaultAndLogsWhy) {
    const struct {
        int result;
        Setting setting;
        std::string expected;
        std::optional<std::string> line;
    } cases[] = {
        {0, Setting(std::string("ru-RU")), "ru-RU", std::nullopt},
        {0, Setting(std::string()), "", std::nullopt},
        {static_cast<int>(0x8000004C), Setting(), "en-US",
         "SMgr GetSettingValue: can not get 'locale/language/', result = Not found = 0x8000004c"},
        {0, Setting(std::int64_t{5}), "en-US",
         "SMgr GetSettingValue: 'locale/language/' wrong type, index = 7"},
        {0, Setting(settings_manager::SettingMap{}), "en-US",
         "SMgr GetSettingValue: 'locale/language/' wrong type, index = 2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        hos::logger::LogCaptureForTesting capture;
        const FakeGetter getter(c.result, c.setting);
        EXPECT_EQ(utils::sm::GetSettingValue<std::string>(getter, settings_manager::paths::kLocaleLanguage,
                                                          std::string("en-US")),
                  c.expected);
        const auto records = capture.Records();
        if (c.line) {
            ASSERT_EQ(records.size(), 1u);
            EXPECT_EQ(records[0].message, *c.line);
            EXPECT_EQ(records[0].level, hos::logger::LogLevel::Warning);
        } else {
            EXPECT_TRUE(records.empty());
        }
    }
}

}  // namespace
