#include "keyboard/wayland_keyboard.h"
#include "keyboard/toolkit_wayland.h"
#include "support/test_compositor.h"

#include <common_utils_ui/keyboard/xkb_helper.h>
#include <common_utils_ui/xkb/xkb_api.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <QGuiApplication>

#include <wayland-client.h>

#include <cstring>
#include <memory>

namespace {

using namespace vdi::common_utils_ui;
using vdi::common_utils_ui::testing::TestCompositor;

// The toolkit's objects as a test hands them out.
struct GivenToolkit : xkb_helper::IToolkitWayland {
    GivenToolkit(wl_display* d, wl_seat* s) : display(d), seat(s) {}
    wl_display* Display() const override { return display; }
    wl_seat* Seat() const override { return seat; }
    wl_display* display;
    wl_seat* seat;
};

// What the toolkit would have on its own queue: the seat, with a listener that counts its events.
struct ToolkitClient {
    explicit ToolkitClient(TestCompositor& compositor)
        : display(wl_display_connect_to_fd(compositor.TakeClientFd())) {
        registry = wl_display_get_registry(display);
        wl_registry_add_listener(registry, &kRegistry, this);
        wl_display_roundtrip(display);  // the globals
        wl_display_roundtrip(display);  // the seat's capabilities
        events = 0;
    }
    ~ToolkitClient() {
        if (seat != nullptr) {
            wl_seat_destroy(seat);
        }
        wl_registry_destroy(registry);
        wl_display_disconnect(display);
    }

    static void Global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t) {
        auto* self = static_cast<ToolkitClient*>(data);
        if (std::strcmp(interface, wl_seat_interface.name) == 0) {
            self->seat = static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 5));
            wl_seat_add_listener(self->seat, &kSeat, self);
        }
    }
    static void GlobalRemove(void*, wl_registry*, std::uint32_t) {}
    static void Capabilities(void* data, wl_seat*, std::uint32_t) {
        ++static_cast<ToolkitClient*>(data)->events;
    }
    static void Name(void* data, wl_seat*, const char*) { ++static_cast<ToolkitClient*>(data)->events; }
    static constexpr wl_registry_listener kRegistry{Global, GlobalRemove};
    static constexpr wl_seat_listener kSeat{Capabilities, Name};

    wl_display* display;
    wl_registry* registry = nullptr;
    wl_seat* seat = nullptr;
    int events = 0;
};

// The compositor's keymap: the default one of libxkbcommon, and the index of its "Lock" modifier.
struct DefaultKeymap {
    DefaultKeymap() {
        xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
        xkb_keymap* keymap = xkb_keymap_new_from_names(context, nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS);
        char* raw = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
        text = raw;
        free(raw);
        lock = xkb_keymap_mod_get_index(keymap, "Lock");
        xkb_keymap_unref(keymap);
        xkb_context_unref(context);
    }
    std::string text;
    xkb_mod_index_t lock;
};

std::unique_ptr<xkb_helper::XkbHelper> HelperOver(std::shared_ptr<xkb_helper::IToolkitWayland> toolkit) {
    return std::make_unique<xkb_helper::XkbHelper>(
        std::make_shared<xkb_api::XkbApi>(),
        std::make_shared<xkb_helper::WaylandKeyboard>(std::move(toolkit)));
}

// Without the toolkit's display or seat (another platform, or a Wayland session without a seat yet)
// there is no keyboard: the set-up says so and asks nothing of the compositor.
TEST(WaylandKeyboard, WithoutTheToolkitsDisplayOrSeatThereIsNoKeyboardAndTheSetUpSaysSo) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);  // the offscreen platform of the tests
    const DefaultKeymap keymap;
    TestCompositor compositor(keymap.text, 1U << keymap.lock);
    ToolkitClient client(compositor);
    ASSERT_NE(client.seat, nullptr);
    struct Case {
        const char* name;
        std::shared_ptr<xkb_helper::IToolkitWayland> toolkit;
    } cases[] = {{"the offscreen platform", std::make_shared<xkb_helper::ToolkitWayland>()},
                 {"no display, no seat", std::make_shared<GivenToolkit>(nullptr, nullptr)},
                 {"a display without a seat", std::make_shared<GivenToolkit>(client.display, nullptr)},
                 {"a seat without its display", std::make_shared<GivenToolkit>(nullptr, client.seat)}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto helper = HelperOver(c.toolkit);
        hos::logger::LogCaptureForTesting capture;
        EXPECT_FALSE(helper->TryInitKeyboardInFocus());
        EXPECT_FALSE(helper->TryInitKeyboardInFocus()) << "a later focus-in tries again";
        EXPECT_EQ(capture.Records().size(), 2U);
        EXPECT_TRUE(capture.Contains("Failed to get keyboard"));
        EXPECT_FALSE(helper->IsCapsLockActive());
    }
    EXPECT_EQ(compositor.KeyboardsMade(), 0);
}

// The helper's keyboard lives on the toolkit's connection but on a queue of its own: it reads the
// keymap and the modifiers the compositor gives this client, while an event waiting on the
// toolkit's queue stays there for the toolkit.
TEST(WaylandKeyboard, TheKeyboardOnThePrivateQueueReadsTheKeymapAndModifiersAndLeavesTheToolkitsQueueAlone) {
    const DefaultKeymap keymap;
    ASSERT_NE(keymap.lock, XKB_MOD_INVALID);
    TestCompositor compositor(keymap.text, 1U << keymap.lock);
    ToolkitClient client(compositor);
    ASSERT_NE(client.seat, nullptr);
    {
        auto helper = HelperOver(std::make_shared<GivenToolkit>(client.display, client.seat));
        hos::logger::LogCaptureForTesting capture;
        EXPECT_TRUE(helper->TryInitKeyboardInFocus()) << "the compositor's keymap needs no synthetic key";
        EXPECT_TRUE(helper->IsCapsLockActive());
        EXPECT_FALSE(helper->IsNumLockActive());
        EXPECT_TRUE(capture.Records().empty());
        EXPECT_EQ(compositor.KeyboardsMade(), 1) << "one keyboard, made once";

        EXPECT_EQ(client.events, 0) << "the toolkit's queue was dispatched";
        EXPECT_GT(wl_display_dispatch_pending(client.display), 0);
        EXPECT_EQ(client.events, 1) << "the seat's event did not wait on the toolkit's queue";
    }
    wl_display_roundtrip(client.display);
    EXPECT_EQ(compositor.KeyboardsReleased(), 1);
    EXPECT_EQ(wl_display_get_error(client.display), 0);
}

}  // namespace
