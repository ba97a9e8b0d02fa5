#include "keyboard/wayland_keyboard.h"

#include <diagnostics/check.h>

#include <wayland-client.h>

#include <sys/mman.h>
#include <unistd.h>

namespace vdi::common_utils_ui::xkb_helper {
namespace {

WaylandKeyboard* Self(void* data) {
    return static_cast<WaylandKeyboard*>(data);
}

void HandleKeymap(void* data, wl_keyboard*, std::uint32_t format, int fd, std::uint32_t size) {
    Self(data)->OnKeymap(format, fd, size);
}

void HandleEnter(void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {}
void HandleLeave(void*, wl_keyboard*, std::uint32_t, wl_surface*) {}
void HandleKey(void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {}

void HandleModifiers(void* data, wl_keyboard*, std::uint32_t, std::uint32_t depressed, std::uint32_t latched,
                     std::uint32_t locked, std::uint32_t group) {
    Self(data)->OnModifiers(depressed, latched, locked, group);
}

void HandleRepeatInfo(void*, wl_keyboard*, std::int32_t, std::int32_t) {}

const wl_keyboard_listener kKeyboardListener{HandleKeymap, HandleEnter,     HandleLeave,
                                             HandleKey,    HandleModifiers, HandleRepeatInfo};

}  // namespace

WaylandKeyboard::WaylandKeyboard(std::shared_ptr<IToolkitWayland> toolkit) : m_toolkit(std::move(toolkit)) {
    HCA_CHECK(m_toolkit != nullptr) << "Toolkit Wayland is nullptr";
}

WaylandKeyboard::~WaylandKeyboard() {
    if (m_state != nullptr) {
        xkb_state_unref(m_state);
    }
    if (m_keymap != nullptr) {
        xkb_keymap_unref(m_keymap);
    }
    if (m_context != nullptr) {
        xkb_context_unref(m_context);
    }
    // The display is the toolkit's: only what was made here is given back.
    if (m_keyboard != nullptr) {
        if (wl_keyboard_get_version(m_keyboard) >= WL_KEYBOARD_RELEASE_SINCE_VERSION) {
            wl_keyboard_release(m_keyboard);
        } else {
            wl_keyboard_destroy(m_keyboard);
        }
        wl_display_flush(m_display);
    }
    if (m_queue != nullptr) {
        wl_event_queue_destroy(m_queue);
    }
}

bool WaylandKeyboard::Attach() const {
    if (m_keyboard != nullptr) {
        return true;
    }
    wl_display* display = m_toolkit->Display();
    wl_seat* seat = display == nullptr ? nullptr : m_toolkit->Seat();
    if (seat == nullptr || wl_display_get_error(display) != 0) {
        return false;
    }
    wl_event_queue* queue = wl_display_create_queue(display);
    if (queue == nullptr) {
        return false;
    }
    // A wrapper of the toolkit's seat bound to the private queue: the keyboard made through it
    // delivers its events there, and the toolkit's own seat proxy is left untouched.
    auto* seatOnQueue = static_cast<wl_seat*>(wl_proxy_create_wrapper(seat));
    if (seatOnQueue == nullptr) {
        wl_event_queue_destroy(queue);
        return false;
    }
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(seatOnQueue), queue);
    wl_keyboard* keyboard = wl_seat_get_keyboard(seatOnQueue);
    wl_proxy_wrapper_destroy(seatOnQueue);
    if (keyboard == nullptr) {
        wl_event_queue_destroy(queue);
        return false;
    }
    // The object itself is never const: the keyboard is made lazily from const questions.
    wl_keyboard_add_listener(keyboard, &kKeyboardListener, const_cast<WaylandKeyboard*>(this));
    m_display = display;
    m_queue = queue;
    m_keyboard = keyboard;
    // The compositor answers a new keyboard with its keymap, and with the modifiers when a surface
    // of this client has the focus.
    wl_display_roundtrip_queue(m_display, m_queue);
    return true;
}

void WaylandKeyboard::Sync() const {
    if (m_keyboard != nullptr && wl_display_get_error(m_display) == 0) {
        wl_display_roundtrip_queue(m_display, m_queue);
    }
}

bool WaylandKeyboard::HasKeyboard() const {
    return Attach();
}

bool WaylandKeyboard::HasKeymapOrState() const {
    Attach();
    Sync();
    return m_keymap != nullptr || m_state != nullptr;
}

void WaylandKeyboard::BuildDefaultKeymap() {
    if (m_context == nullptr) {
        m_context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    }
    if (m_context == nullptr) {
        return;
    }
    ReplaceKeymap(xkb_keymap_new_from_names(m_context, nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

xkb_state* WaylandKeyboard::State() const {
    Attach();
    Sync();
    return m_state;
}

std::uint32_t WaylandKeyboard::ModifierMask() const {
    Attach();
    Sync();
    return m_modifierMask;
}

void WaylandKeyboard::OnKeymap(std::uint32_t format, int fd, std::uint32_t size) {
    if (format != WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 || size == 0) {
        close(fd);
        return;
    }
    void* text = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
    close(fd);
    if (text == MAP_FAILED) {
        return;
    }
    if (m_context == nullptr) {
        m_context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    }
    xkb_keymap* keymap = m_context == nullptr ? nullptr
                                              : xkb_keymap_new_from_string(
                                                    m_context, static_cast<const char*>(text),
                                                    XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS);
    munmap(text, size);
    ReplaceKeymap(keymap);
}

void WaylandKeyboard::OnModifiers(std::uint32_t depressed, std::uint32_t latched, std::uint32_t locked,
                                  std::uint32_t group) {
    m_modifierMask = depressed | latched | locked;
    if (m_state != nullptr) {
        xkb_state_update_mask(m_state, depressed, latched, locked, 0, 0, group);
    }
}

void WaylandKeyboard::ReplaceKeymap(xkb_keymap* keymap) {
    if (keymap == nullptr) {
        return;
    }
    if (m_state != nullptr) {
        xkb_state_unref(m_state);
    }
    if (m_keymap != nullptr) {
        xkb_keymap_unref(m_keymap);
    }
    m_keymap = keymap;
    m_state = xkb_state_new(m_keymap);
}

}  // namespace vdi::common_utils_ui::xkb_helper
