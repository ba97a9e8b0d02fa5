// The benchmark's eye and hand on the X server: a client of its own that selects SubstructureNotify
// on the root window (so it sees every top-level window being mapped and unmapped, without being a
// window manager) and sends pointer input through the XTEST extension.
//
// Thread: one thread only (the driver's main thread). Owns its X connection for its whole life.
#pragma once

#include <xcb/xcb.h>

#include <sys/types.h>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace access_arbiter::bench {

class XObserver {
public:
    using Clock = std::chrono::steady_clock;

    struct Mapped {
        xcb_window_t window = XCB_WINDOW_NONE;
        Clock::time_point at;  // when the MapNotify was read from the connection
    };

    struct Geometry {
        int x = 0;  // root coordinates of the window's top-left corner
        int y = 0;
        int width = 0;
        int height = 0;
    };

    // Connects to DISPLAY; `error` says why when the result is empty (no display, no XTEST).
    static std::unique_ptr<XObserver> Connect(std::string& error);
    ~XObserver();
    XObserver(const XObserver&) = delete;
    XObserver& operator=(const XObserver&) = delete;

    // The next top-level window of process `pid` (its _NET_WM_PID) mapped before `deadline`. Maps of
    // other processes' windows are skipped. The time stamp is taken as the event is read, before the
    // window's owner is asked for.
    std::optional<Mapped> WaitForMap(pid_t pid, Clock::time_point deadline);
    // Waits until `window` is unmapped or destroyed; false at `deadline`.
    bool WaitForUnmap(xcb_window_t window, Clock::time_point deadline);
    // Reads and drops every event already queued or arriving until `until`.
    void Drain(Clock::time_point until);

    std::optional<Geometry> GeometryOf(xcb_window_t window);
    // Moves the pointer to root coordinates (x, y) and flushes.
    void MovePointer(int x, int y);
    // Presses and releases button 1 where the pointer is, both in one flush.
    void Click();

private:
    XObserver(xcb_connection_t* connection, xcb_window_t root);
    // The next event, or null at `deadline` (or when the connection broke).
    xcb_generic_event_t* NextEvent(Clock::time_point deadline);
    std::optional<pid_t> PidOf(xcb_window_t window);

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
    xcb_atom_t m_wmPid = XCB_ATOM_NONE;
};

}  // namespace access_arbiter::bench
