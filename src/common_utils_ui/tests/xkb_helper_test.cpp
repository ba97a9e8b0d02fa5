#include <common_utils_ui/keyboard/xkb_helper.h>
#include <common_utils_ui/xkb/xkb_api.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QWindow>

namespace {

using namespace vdi::common_utils_ui;
using ::testing::_;
using ::testing::NiceMock;
using ::testing::Return;
using ::testing::StrEq;

class MockXkbApi : public xkb_api::IXkbApi {
public:
    MOCK_METHOD(xkb_context*, XkbContextNew, (xkb_context_flags), (const, override));
    MOCK_METHOD(void, XkbContextUnref, (xkb_context*), (const, override));
    MOCK_METHOD(xkb_keymap*, XkbKeymapNewFromNames,
                (xkb_context*, const xkb_rule_names*, xkb_keymap_compile_flags), (const, override));
    MOCK_METHOD(void, XkbKeymapUnref, (xkb_keymap*), (const, override));
    MOCK_METHOD(xkb_state*, XkbStateNew, (xkb_keymap*), (const, override));
    MOCK_METHOD(void, XkbStateUnref, (xkb_state*), (const, override));
    MOCK_METHOD(xkb_keymap*, XkbStateGetKeymap, (xkb_state*), (const, override));
    MOCK_METHOD(xkb_mod_index_t, XkbKeymapModGetIndex, (xkb_keymap*, const char*), (const, override));
    MOCK_METHOD(xkb_mod_index_t, XkbKeymapNumMods, (xkb_keymap*), (const, override));
    MOCK_METHOD(const char*, XkbKeymapModGetName, (xkb_keymap*, xkb_mod_index_t), (const, override));
};

// A keyboard whose parts the test switches on and off.
class FakeKeyboard : public xkb_helper::IToolkitKeyboard {
public:
    bool HasKeyboard() const override { return present; }
    bool HasKeymapOrState() const override { return hasKeymap; }
    void BuildDefaultKeymap() override { ++builds; }
    xkb_state* State() const override { return state; }
    std::uint32_t ModifierMask() const override { return mask; }

    bool present = false;
    bool hasKeymap = false;
    int builds = 0;
    xkb_state* state = nullptr;
    std::uint32_t mask = 0;
};

// Opaque handles: the fake API never dereferences them.
xkb_context* const kContext = reinterpret_cast<xkb_context*>(0x10);
xkb_keymap* const kKeymap = reinterpret_cast<xkb_keymap*>(0x20);
xkb_state* const kState = reinterpret_cast<xkb_state*>(0x30);

struct Fixture {
    std::shared_ptr<NiceMock<MockXkbApi>> api = std::make_shared<NiceMock<MockXkbApi>>();
    std::shared_ptr<FakeKeyboard> keyboard = std::make_shared<FakeKeyboard>();
    xkb_helper::XkbHelper helper{api, keyboard};
};

TEST(XkbHelper, EmptyDependenciesAreRejected) {
    EXPECT_ANY_THROW(xkb_helper::XkbHelper(nullptr, std::make_shared<FakeKeyboard>()));
    EXPECT_ANY_THROW(xkb_helper::XkbHelper(std::make_shared<xkb_api::XkbApi>(), nullptr));
}

TEST(XkbHelper, ModifiersAreInactiveWhileTheKeyboardHasNoState) {
    Fixture f;
    f.keyboard->mask = 0xFFFFFFFF;
    EXPECT_CALL(*f.api, XkbStateGetKeymap(_)).Times(0);
    EXPECT_FALSE(f.helper.IsCapsLockActive());
    EXPECT_FALSE(f.helper.IsNumLockActive());
}

TEST(XkbHelper, ModifierFollowsItsBitInTheMask) {
    Fixture f;
    f.keyboard->state = kState;
    ON_CALL(*f.api, XkbStateGetKeymap(kState)).WillByDefault(Return(kKeymap));
    ON_CALL(*f.api, XkbKeymapModGetIndex(kKeymap, StrEq("Lock"))).WillByDefault(Return(1));
    ON_CALL(*f.api, XkbKeymapModGetIndex(kKeymap, StrEq("Mod2"))).WillByDefault(Return(4));

    f.keyboard->mask = 1U << 1;
    EXPECT_TRUE(f.helper.IsCapsLockActive());
    EXPECT_FALSE(f.helper.IsNumLockActive());
    f.keyboard->mask = 1U << 4;
    EXPECT_FALSE(f.helper.IsCapsLockActive());
    EXPECT_TRUE(f.helper.IsNumLockActive());
}

TEST(XkbHelper, ModifierMissingFromTheKeymapIsInactive) {
    Fixture f;
    f.keyboard->state = kState;
    f.keyboard->mask = 0xFFFFFFFF;
    ON_CALL(*f.api, XkbStateGetKeymap(kState)).WillByDefault(Return(kKeymap));
    EXPECT_CALL(*f.api, XkbKeymapModGetIndex(kKeymap, StrEq("ScrollLock"))).WillOnce(Return(XKB_MOD_INVALID));
    EXPECT_FALSE(f.helper.IsScrollLockActive());
}

TEST(XkbHelper, ModeNamesOfTheRealFixedKeymapEndInABlank) {
    xkb_helper::XkbHelper helper(std::make_shared<xkb_api::XkbApi>(), std::make_shared<FakeKeyboard>());
    const std::string names = helper.ConvertModeNamesToString();
    ASSERT_FALSE(names.empty());
    EXPECT_EQ(names.back(), ' ');
    EXPECT_EQ(names.rfind("Shift Lock Control ", 0), 0U) << names;
    EXPECT_NE(names.find("Mod2 "), std::string::npos);
}

TEST(XkbHelper, ModeNamesAskForTheFixedLayoutsAndSkipMissingNames) {
    Fixture f;
    hos::logger::LogCaptureForTesting capture;
    EXPECT_CALL(*f.api, XkbContextNew(XKB_CONTEXT_NO_FLAGS)).WillOnce(Return(kContext));
    EXPECT_CALL(*f.api, XkbKeymapNewFromNames(kContext, _, XKB_KEYMAP_COMPILE_NO_FLAGS))
        .WillOnce([](xkb_context*, const xkb_rule_names* names, xkb_keymap_compile_flags) {
            EXPECT_EQ(names->rules, nullptr);
            EXPECT_STREQ(names->model, "pc105");
            EXPECT_STREQ(names->layout, "us,ru");
            EXPECT_STREQ(names->variant, "");
            EXPECT_STREQ(names->options, "grp:alt_shift_toggle");
            return kKeymap;
        });
    EXPECT_CALL(*f.api, XkbStateNew(kKeymap)).WillOnce(Return(kState));
    EXPECT_CALL(*f.api, XkbKeymapNumMods(kKeymap)).WillOnce(Return(3));
    EXPECT_CALL(*f.api, XkbKeymapModGetName(kKeymap, 0)).WillOnce(Return("Shift"));
    EXPECT_CALL(*f.api, XkbKeymapModGetName(kKeymap, 1)).WillOnce(Return(nullptr));
    EXPECT_CALL(*f.api, XkbKeymapModGetName(kKeymap, 2)).WillOnce(Return("Mod1"));
    EXPECT_CALL(*f.api, XkbStateUnref(kState)).Times(1);
    EXPECT_CALL(*f.api, XkbKeymapUnref(kKeymap)).Times(1);
    EXPECT_CALL(*f.api, XkbContextUnref(kContext)).Times(1);

    EXPECT_EQ(f.helper.ConvertModeNamesToString(), "Shift Mod1 ");
    EXPECT_EQ(capture.Count(hos::logger::LogLevel::Warning), 1U);
    EXPECT_TRUE(capture.Contains("ConvertModeNamesToString: Invalid index of num mods"));
}

TEST(XkbHelper, ModeNamesFreeContextAndKeymapWhenTheStateFails) {
    Fixture f;
    hos::logger::LogCaptureForTesting capture;
    ON_CALL(*f.api, XkbContextNew(_)).WillByDefault(Return(kContext));
    ON_CALL(*f.api, XkbKeymapNewFromNames(_, _, _)).WillByDefault(Return(kKeymap));
    EXPECT_CALL(*f.api, XkbStateNew(kKeymap)).WillOnce(Return(nullptr));
    EXPECT_CALL(*f.api, XkbStateUnref(_)).Times(0);
    EXPECT_CALL(*f.api, XkbKeymapUnref(kKeymap)).Times(1);
    EXPECT_CALL(*f.api, XkbContextUnref(kContext)).Times(1);

    EXPECT_EQ(f.helper.ConvertModeNamesToString(), "");
    EXPECT_TRUE(capture.Contains("XkbHelper: Failed to create xkb state"));
}

TEST(XkbHelper, ModeNamesFreeTheContextWhenTheKeymapFails) {
    Fixture f;
    hos::logger::LogCaptureForTesting capture;
    ON_CALL(*f.api, XkbContextNew(_)).WillByDefault(Return(kContext));
    EXPECT_CALL(*f.api, XkbKeymapNewFromNames(_, _, _)).WillOnce(Return(nullptr));
    EXPECT_CALL(*f.api, XkbStateNew(_)).Times(0);
    EXPECT_CALL(*f.api, XkbKeymapUnref(_)).Times(0);
    EXPECT_CALL(*f.api, XkbContextUnref(kContext)).Times(1);

    EXPECT_EQ(f.helper.ConvertModeNamesToString(), "");
    EXPECT_TRUE(capture.Contains("XkbHelper: Failed to create xkb keymap"));
}

TEST(XkbHelper, ModeNamesFreeNothingWhenTheContextFails) {
    Fixture f;
    hos::logger::LogCaptureForTesting capture;
    EXPECT_CALL(*f.api, XkbContextNew(_)).WillOnce(Return(nullptr));
    EXPECT_CALL(*f.api, XkbKeymapNewFromNames(_, _, _)).Times(0);
    EXPECT_CALL(*f.api, XkbContextUnref(_)).Times(0);

    EXPECT_EQ(f.helper.ConvertModeNamesToString(), "");
    EXPECT_TRUE(capture.Contains("XkbHelper: Failed to create xkb contex"));
}

TEST(XkbHelper, InitWithoutKeyboardWarnsAndFails) {
    Fixture f;
    hos::logger::LogCaptureForTesting capture;
    EXPECT_FALSE(f.helper.TryInitKeyboardInFocus());
    EXPECT_TRUE(capture.Contains("Failed to get keyboard"));
    EXPECT_EQ(f.keyboard->builds, 0);
}

TEST(XkbHelper, InitWithKeymapSucceedsWithoutSyntheticKey) {
    Fixture f;
    f.keyboard->present = true;
    f.keyboard->hasKeymap = true;
    EXPECT_TRUE(f.helper.TryInitKeyboardInFocus());
    EXPECT_EQ(f.keyboard->builds, 0);
}

TEST(XkbHelper, InitWithoutFocusObjectFailsSilently) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    Fixture f;
    hos::logger::LogCaptureForTesting capture;
    f.keyboard->present = true;
    ASSERT_EQ(QGuiApplication::focusObject(), nullptr);
    EXPECT_FALSE(f.helper.TryInitKeyboardInFocus());
    EXPECT_EQ(f.keyboard->builds, 0);
    EXPECT_TRUE(capture.Records().empty());
}

TEST(XkbHelper, InitWithFocusObjectBuildsTheDefaultKeymap) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    QWindow window;
    window.show();
    window.requestActivate();
    QCoreApplication::processEvents();
    ASSERT_NE(QGuiApplication::focusObject(), nullptr);
    Fixture f;
    f.keyboard->present = true;
    EXPECT_TRUE(f.helper.TryInitKeyboardInFocus());
    EXPECT_EQ(f.keyboard->builds, 1);
}

}  // namespace

namespace {

TEST(XkbHelperOnThisPlatform, WithoutWaylandTheKeyboardIsAbsentAndInitWarns) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    ASSERT_FALSE(QGuiApplication::platformName().startsWith(QLatin1String("wayland")));
    hos::logger::LogCaptureForTesting capture;
    const auto helper = vdi::common_utils_ui::xkb_helper::CreateXkbHelper();
    EXPECT_FALSE(helper->TryInitKeyboardInFocus());
    EXPECT_TRUE(capture.Contains("Failed to get keyboard"));
    EXPECT_FALSE(helper->IsCapsLockActive());
}

}  // namespace
