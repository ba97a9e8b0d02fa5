// The hosted platform's window-system policy for the top-level windows of a managed Qt application.
// On HalcyraOS the platform's own window system does this; on a Linux desktop this object stands in
// for it, so that the application's documents set no flags of their own.
//
// Always:
//   - the application does not quit when its last window closes: a managed application ends when
//     the session ends it (SIGTERM), never because a window went away;
//   - a close request from the window system (a title bar's ×, Alt+F4, WM_DELETE_WINDOW, a
//     compositor's close) for a shown window is refused with one log line: the application hides
//     its own windows. The application's own QWindow::close(), and so the end of its event loop,
//     which closes every window, is not refused;
//   - on X11, a window that the application shows but the display has not mapped after a moment (a
//     window manager that starts or restarts around the map) is mapped again, with one log line, after
//     250 ms, then after 0.5, 1 and 2 s, and every 2 s for as long as it stays unmapped;
//   - the desktop file name, unless the application set one, is the application's name, which is
//     also the class of its X11 WM_CLASS; a desktop entry of that name matches its windows.
// With the consent policy (the default; HL_WINDOW_POLICY=plain turns it off): a plain top-level
// window becomes a dialog kept above normal windows, and it is raised and activated each time it
// is shown. On X11 this is _NET_WM_WINDOW_TYPE_DIALOG with _NET_WM_STATE_ABOVE and an activation
// request; a Wayland compositor gets what xdg-shell allows (the activation request, where the
// compositor offers xdg-activation; there is no keep-above).
//
// One object is made for each QGuiApplication, as its child, by a start-up routine linked into every
// hosted Qt executable that links hl_platform_qt; nothing calls it.
//
// Thread: the Qt main thread only (it filters the application's events).
#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

class QWindow;

namespace hos::platform {

enum class WindowPolicy { Consent, Plain };

// HL_WINDOW_POLICY: "plain" gives the plain policy; anything else, or nothing, the consent policy.
WindowPolicy WindowPolicyFromEnvironment();

class ManagedWindowPolicy final : public QObject {
public:
    ManagedWindowPolicy(WindowPolicy policy, QObject* parent);
    ManagedWindowPolicy(const ManagedWindowPolicy&) = delete;
    ManagedWindowPolicy& operator=(const ManagedWindowPolicy&) = delete;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void OnShow(QWindow& window);
    void ScheduleMapCheck();
    void MapShownWindowsAgain();

    const WindowPolicy m_policy;
    QTimer m_mapCheck;
    std::chrono::milliseconds m_mapCheckDelay;
};

}  // namespace hos::platform
