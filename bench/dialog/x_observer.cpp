#include "x_observer.h"

#include <xcb/xtest.h>

#include <poll.h>

#include <cstdlib>
#include <cstring>

namespace access_arbiter::bench {

namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;

struct FreeDeleter {
    void operator()(void* pointer) const { std::free(pointer); }
};
template <typename T>
using XcbReply = std::unique_ptr<T, FreeDeleter>;

}  // namespace

std::unique_ptr<XObserver> XObserver::Connect(std::string& error) {
    const char* display = std::getenv("DISPLAY");
    if (display == nullptr || *display == '\0') {
        error = "DISPLAY is not set";
        return nullptr;
    }
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        error = std::string("can't connect to the X server ") + display;
        return nullptr;
    }
    const xcb_query_extension_reply_t* xtest = xcb_get_extension_data(connection, &xcb_test_id);
    if (xtest == nullptr || xtest->present == 0) {
        xcb_disconnect(connection);
        error = std::string("the X server ") + display + " has no XTEST extension";
        return nullptr;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i) {
        xcb_screen_next(&screens);
    }
    return std::unique_ptr<XObserver>(new XObserver(connection, screens.data->root));
}

XObserver::XObserver(xcb_connection_t* connection, xcb_window_t root)
    : m_connection(connection), m_root(root) {
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
    const char name[] = "_NET_WM_PID";
    XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, sizeof(name) - 1, name), nullptr));
    if (atom) {
        m_wmPid = atom->atom;
    }
    xcb_flush(m_connection);
}

XObserver::~XObserver() {
    xcb_disconnect(m_connection);
}

xcb_generic_event_t* XObserver::NextEvent(Clock::time_point deadline) {
    for (;;) {
        if (xcb_generic_event_t* event = xcb_poll_for_event(m_connection)) {
            return event;
        }
        if (xcb_connection_has_error(m_connection) != 0) {
            return nullptr;
        }
        const auto left = duration_cast<milliseconds>(deadline - Clock::now()).count();
        if (left < 0) {
            return nullptr;
        }
        pollfd descriptor{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        // One millisecond more than left, so the loop does not spin in the last fraction of it.
        ::poll(&descriptor, 1, static_cast<int>(left) + 1);
    }
}

std::optional<pid_t> XObserver::PidOf(xcb_window_t window) {
    XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, window, m_wmPid, XCB_ATOM_CARDINAL, 0, 1), nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) != 4) {
        return std::nullopt;
    }
    std::uint32_t pid = 0;
    std::memcpy(&pid, xcb_get_property_value(reply.get()), sizeof pid);
    return static_cast<pid_t>(pid);
}

std::optional<XObserver::Mapped> XObserver::WaitForMap(pid_t pid, Clock::time_point deadline) {
    while (xcb_generic_event_t* event = NextEvent(deadline)) {
        const auto at = Clock::now();
        const bool isMap = (event->response_type & 0x7f) == XCB_MAP_NOTIFY;
        const xcb_window_t window = isMap ? reinterpret_cast<xcb_map_notify_event_t*>(event)->window : 0;
        std::free(event);
        if (isMap && PidOf(window) == pid) {
            return Mapped{window, at};
        }
    }
    return std::nullopt;
}

bool XObserver::WaitForUnmap(xcb_window_t window, Clock::time_point deadline) {
    while (xcb_generic_event_t* event = NextEvent(deadline)) {
        const int type = event->response_type & 0x7f;
        bool gone = false;
        if (type == XCB_UNMAP_NOTIFY) {
            gone = reinterpret_cast<xcb_unmap_notify_event_t*>(event)->window == window;
        } else if (type == XCB_DESTROY_NOTIFY) {
            gone = reinterpret_cast<xcb_destroy_notify_event_t*>(event)->window == window;
        }
        std::free(event);
        if (gone) {
            return true;
        }
    }
    return false;
}

void XObserver::Drain(Clock::time_point until) {
    while (xcb_generic_event_t* event = NextEvent(until)) {
        std::free(event);
    }
}

std::optional<XObserver::Geometry> XObserver::GeometryOf(xcb_window_t window) {
    XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
    XcbReply<xcb_translate_coordinates_reply_t> origin(xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, window, m_root, 0, 0), nullptr));
    if (!geometry || !origin) {
        return std::nullopt;
    }
    return Geometry{origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

void XObserver::MovePointer(int x, int y) {
    xcb_test_fake_input(m_connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, m_root,
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    xcb_flush(m_connection);
}

void XObserver::Click() {
    xcb_test_fake_input(m_connection, XCB_BUTTON_PRESS, 1, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
    xcb_test_fake_input(m_connection, XCB_BUTTON_RELEASE, 1, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
    xcb_flush(m_connection);
}

}  // namespace access_arbiter::bench
