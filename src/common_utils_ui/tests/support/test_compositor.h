// A minimal Wayland compositor in a thread of the test, reached over a socket pair: one wl_seat
// (version 5) with the keyboard capability. A new wl_keyboard gets the xkb keymap given to the
// constructor and the modifiers (0, 0, `locked`, 0); each get_keyboard also sends the seat's
// name again, so that the client's queue of the seat has an event waiting.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

struct wl_display;

namespace vdi::common_utils_ui::testing {

class TestCompositor {
public:
    TestCompositor(std::string keymap, std::uint32_t locked);
    ~TestCompositor();

    TestCompositor(const TestCompositor&) = delete;
    TestCompositor& operator=(const TestCompositor&) = delete;

    // The client end of the connection; the caller connects with wl_display_connect_to_fd once.
    int TakeClientFd();

    int KeyboardsMade() const { return m_keyboardsMade; }
    int KeyboardsReleased() const { return m_keyboardsReleased; }

    // Used by the server's callbacks, on the compositor's thread.
    void OnGetKeyboard(void* seatResource, std::uint32_t id);
    void OnKeyboardReleased() { ++m_keyboardsReleased; }

private:
    std::string m_keymap;
    std::uint32_t m_locked;
    wl_display* m_display = nullptr;
    int m_clientFd = -1;
    std::atomic<int> m_keyboardsMade{0};
    std::atomic<int> m_keyboardsReleased{0};
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

}  // namespace vdi::common_utils_ui::testing
