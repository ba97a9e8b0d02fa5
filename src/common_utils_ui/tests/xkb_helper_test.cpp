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
    xkb_state* State() const override { return nullptr; }
    std::uint32_t ModifierMask() const override { return 0; }

    bool present = false;
    bool hasKeymap = false;
    int builds = 0;
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

// Each step of building the fixed keymap may fail; whatever was made before it must be freed.
TEST(XkbHelper, ModeNamesFreeEverythingTheyMadeWhicheverStepFails) {
    enum Step { kContextStep, kKeymapStep, kStateStep, kNone };
    const char* logs[] = {"XkbHelper: Failed to create xkb contex", "XkbHelper: Failed to create xkb keymap",
                          "XkbHelper: Failed to create xkb state", "Invalid index of num mods"};
    for (Step failing : {kContextStep, kKeymapStep, kStateStep, kNone}) {
        SCOPED_TRACE(failing);
        Fixture f;
        hos::logger::LogCaptureForTesting capture;
        EXPECT_CALL(*f.api, XkbContextNew(XKB_CONTEXT_NO_FLAGS))
            .WillOnce(Return(failing == kContextStep ? nullptr : kContext));
        EXPECT_CALL(*f.api, XkbKeymapNewFromNames(kContext, _, XKB_KEYMAP_COMPILE_NO_FLAGS))
            .Times(failing > kContextStep ? 1 : 0)
            .WillRepeatedly([failing](xkb_context*, const xkb_rule_names* names, xkb_keymap_compile_flags) {
                EXPECT_EQ(names->rules, nullptr);
                EXPECT_STREQ(names->model, "pc105");
                EXPECT_STREQ(names->layout, "us,ru");
                EXPECT_STREQ(names->variant, "");
                EXPECT_STREQ(names->options, "grp:alt_shift_toggle");
                return failing == kKeymapStep ? nullptr : kKeymap;
            });
        EXPECT_CALL(*f.api, XkbStateNew(kKeymap))
            .Times(failing > kKeymapStep ? 1 : 0)
            .WillRepeatedly(Return(failing == kStateStep ? nullptr : kState));
        ON_CALL(*f.api, XkbKeymapNumMods(kKeymap)).WillByDefault(Return(3));
        ON_CALL(*f.api, XkbKeymapModGetName(kKeymap, 0)).WillByDefault(Return("Shift"));
        ON_CALL(*f.api, XkbKeymapModGetName(kKeymap, 2)).WillByDefault(Return("Mod1"));
        EXPECT_CALL(*f.api, XkbContextUnref(kContext)).Times(failing > kContextStep ? 1 : 0);
        EXPECT_CALL(*f.api, XkbKeymapUnref(kKeymap)).Times(failing > kKeymapStep ? 1 : 0);
        EXPECT_CALL(*f.api, XkbStateUnref(kState)).Times(failing > kStateStep ? 1 : 0);

        EXPECT_EQ(f.helper.ConvertModeNamesToString(), failing == kNone ? "Shift Mod1 " : "");
        EXPECT_TRUE(capture.Contains(logs[failing]));
        EXPECT_EQ(capture.Records().size(), 1U);
    }
}

TEST(XkbHelper, InitInFocusNeedsAKeyboardAndBuildsTheKeymapOnlyForAFocusObjectWithoutOne) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    QWindow window;
    struct Case {
        bool present, hasKeymap, focus, result;
        int builds;
        const char* log;
    } cases[] = {{false, false, false, false, 0, "Failed to get keyboard"},
                 {true, true, false, true, 0, nullptr},
                 {true, false, false, false, 0, nullptr},
                 {true, false, true, true, 1, nullptr}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.present << c.hasKeymap << c.focus);
        if (c.focus) {
            window.show();
            window.requestActivate();
            QCoreApplication::processEvents();
        }
        ASSERT_EQ(QGuiApplication::focusObject() != nullptr, c.focus);
        Fixture f;
        f.keyboard->present = c.present;
        f.keyboard->hasKeymap = c.hasKeymap;
        hos::logger::LogCaptureForTesting capture;
        EXPECT_EQ(f.helper.TryInitKeyboardInFocus(), c.result);
        EXPECT_EQ(f.keyboard->builds, c.builds);
        EXPECT_EQ(capture.Records().size(), c.log != nullptr ? 1U : 0U);
        EXPECT_TRUE(c.log == nullptr || capture.Contains(c.log));
    }
}

}  // namespace
