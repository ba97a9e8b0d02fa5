#include "support/test_compositor.h"

#include <wayland-server.h>

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace vdi::common_utils_ui::testing {
namespace {

TestCompositor* Owner(wl_resource* resource) {
    return static_cast<TestCompositor*>(wl_resource_get_user_data(resource));
}

void ReleaseKeyboard(wl_client*, wl_resource* resource) {
    Owner(resource)->OnKeyboardReleased();
    wl_resource_destroy(resource);
}

const struct wl_keyboard_interface kKeyboard { ReleaseKeyboard };

void GetPointer(wl_client*, wl_resource*, std::uint32_t) {}
void GetKeyboard(wl_client*, wl_resource* seat, std::uint32_t id) {
    Owner(seat)->OnGetKeyboard(seat, id);
}
void GetTouch(wl_client*, wl_resource*, std::uint32_t) {}
void ReleaseSeat(wl_client*, wl_resource* resource) {
    wl_resource_destroy(resource);
}

const struct wl_seat_interface kSeat { GetPointer, GetKeyboard, GetTouch, ReleaseSeat };

void BindSeat(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    wl_resource* seat = wl_resource_create(client, &wl_seat_interface, static_cast<int>(version), id);
    wl_resource_set_implementation(seat, &kSeat, data, nullptr);
    wl_seat_send_capabilities(seat, WL_SEAT_CAPABILITY_KEYBOARD);
}

}  // namespace

TestCompositor::TestCompositor(std::string keymap, std::uint32_t locked)
    : m_keymap(std::move(keymap)), m_locked(locked), m_display(wl_display_create()) {
    int fds[2];
    if (m_display == nullptr || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0) {
        throw std::runtime_error("test compositor: no display or socket pair");
    }
    wl_global_create(m_display, &wl_seat_interface, 5, this, BindSeat);
    wl_client_create(m_display, fds[0]);
    m_clientFd = fds[1];
    m_thread = std::thread([this] {
        wl_event_loop* loop = wl_display_get_event_loop(m_display);
        while (!m_stop) {
            wl_event_loop_dispatch(loop, 20);
            wl_display_flush_clients(m_display);
        }
    });
}

TestCompositor::~TestCompositor() {
    m_stop = true;
    m_thread.join();
    wl_display_destroy_clients(m_display);
    wl_display_destroy(m_display);
    if (m_clientFd >= 0) {
        close(m_clientFd);
    }
}

int TestCompositor::TakeClientFd() {
    const int fd = m_clientFd;
    m_clientFd = -1;
    return fd;
}

void TestCompositor::OnGetKeyboard(void* seatResource, std::uint32_t id) {
    auto* seat = static_cast<wl_resource*>(seatResource);
    wl_resource* keyboard = wl_resource_create(wl_resource_get_client(seat), &wl_keyboard_interface,
                                               wl_resource_get_version(seat), id);
    wl_resource_set_implementation(keyboard, &kKeyboard, this, nullptr);
    ++m_keyboardsMade;
    const int fd = memfd_create("keymap", MFD_CLOEXEC);
    const std::size_t size = m_keymap.size() + 1;
    if (fd >= 0 && write(fd, m_keymap.c_str(), size) == static_cast<ssize_t>(size)) {
        wl_keyboard_send_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, fd,
                                static_cast<std::uint32_t>(size));
    }
    if (fd >= 0) {
        close(fd);
    }
    wl_keyboard_send_modifiers(keyboard, 1, 0, 0, m_locked, 0);
    wl_seat_send_name(seat, "seat0");
}

}  // namespace vdi::common_utils_ui::testing
