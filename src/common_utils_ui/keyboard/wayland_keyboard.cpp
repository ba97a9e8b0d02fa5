#include "keyboard/wayland_keyboard.h"

#include <QGuiApplication>

#include <wayland-client.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace vdi::common_utils_ui::xkb_helper {
namespace {

WaylandKeyboard* Self(void* data) {
    return static_cast<WaylandKeyboard*>(data);
}

void HandleGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                  std::uint32_t version) {
    Self(data)->OnGlobal(registry, name, interface, version);
}

void HandleGlobalRemove(void*, wl_registry*, std::uint32_t) {}

const wl_registry_listener kRegistryListener{HandleGlobal, HandleGlobalRemove};

void HandleCapabilities(void* data, wl_seat*, std::uint32_t capabilities) {
    Self(data)->OnCapabilities(capabilities);
}

void HandleSeatName(void*, wl_seat*, const char*) {}

const wl_seat_listener kSeatListener{HandleCapabilities, HandleSeatName};

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

WaylandKeyboard::WaylandKeyboard() {
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
        return;
    }
    m_display = wl_display_connect(nullptr);
    if (m_display == nullptr) {
        return;
    }
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &kRegistryListener, this);
    // The first round trip announces the seat, the second its capabilities and keymap.
    wl_display_roundtrip(m_display);
    wl_display_roundtrip(m_display);
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
    if (m_keyboard != nullptr) {
        wl_keyboard_destroy(m_keyboard);
    }
    if (m_seat != nullptr) {
        wl_seat_destroy(m_seat);
    }
    if (m_registry != nullptr) {
        wl_registry_destroy(m_registry);
    }
    if (m_display != nullptr) {
        wl_display_disconnect(m_display);
    }
}

void WaylandKeyboard::Sync() const {
    if (m_display != nullptr && wl_display_get_error(m_display) == 0) {
        wl_display_roundtrip(m_display);
    }
}

bool WaylandKeyboard::HasKeyboard() const {
    Sync();
    return m_keyboard != nullptr;
}

bool WaylandKeyboard::HasKeymapOrState() const {
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
    return m_state;
}

std::uint32_t WaylandKeyboard::ModifierMask() const {
    Sync();
    return m_modifierMask;
}

void WaylandKeyboard::OnGlobal(wl_registry* registry, std::uint32_t name, const char* interface,
                               std::uint32_t version) {
    if (m_seat == nullptr && std::strcmp(interface, wl_seat_interface.name) == 0) {
        m_seat = static_cast<wl_seat*>(
            wl_registry_bind(registry, name, &wl_seat_interface, std::min<std::uint32_t>(version, 4)));
        wl_seat_add_listener(m_seat, &kSeatListener, this);
    }
}

void WaylandKeyboard::OnCapabilities(std::uint32_t capabilities) {
    const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
    if (hasKeyboard && m_keyboard == nullptr) {
        m_keyboard = wl_seat_get_keyboard(m_seat);
        wl_keyboard_add_listener(m_keyboard, &kKeyboardListener, this);
    } else if (!hasKeyboard && m_keyboard != nullptr) {
        wl_keyboard_destroy(m_keyboard);
        m_keyboard = nullptr;
    }
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
