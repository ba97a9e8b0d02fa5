#include "managed_window_policy.h"

#include <diagnostics/log.h>
#include <diagnostics/qstring_formatter.h>

#include <private/qwindow_p.h>
#include <qpa/qplatformwindow.h>
#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace hos::platform {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kFirstMapCheck = 250ms;
constexpr std::chrono::milliseconds kLastMapCheck = 2000ms;

bool IsManagedTopLevel(const QWindow& window) {
    // Popups, tool tips and the like come and go with their owner; only plain and dialog windows count.
    const Qt::WindowType type = window.type();
    return window.isTopLevel() && (type == Qt::Window || type == Qt::Dialog);
}

void InstallManagedWindowPolicy() {
    // A QCoreApplication has no windows; only a GUI application gets the policy.
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) {
        new ManagedWindowPolicy(WindowPolicyFromEnvironment(), QCoreApplication::instance());
    }
}

}  // namespace

WindowPolicy WindowPolicyFromEnvironment() {
    const char* value = std::getenv("HL_WINDOW_POLICY");
    return value != nullptr && std::strcmp(value, "plain") == 0 ? WindowPolicy::Plain : WindowPolicy::Consent;
}

ManagedWindowPolicy::ManagedWindowPolicy(WindowPolicy policy, QObject* parent)
    : QObject(parent), m_policy(policy), m_mapCheckDelay(kFirstMapCheck) {
    QGuiApplication::setQuitOnLastWindowClosed(false);
    m_mapCheck.setSingleShot(true);
    connect(&m_mapCheck, &QTimer::timeout, this, &ManagedWindowPolicy::MapShownWindowsAgain);
    if (parent != nullptr) {
        parent->installEventFilter(this);
    }
}

bool ManagedWindowPolicy::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    // Every event of the application passes here: leave the others at once.
    if (type != QEvent::Close && type != QEvent::Show && type != QEvent::Expose) {
        return false;
    }
    auto* window = qobject_cast<QWindow*>(watched);
    if (window == nullptr || !IsManagedTopLevel(*window)) {
        return false;
    }
    switch (type) {
        case QEvent::Close:
            // The application's own close (QWindow::close(), which the quit of the event loop also
            // calls for every window) passes; only the window system's request is refused.
            if (!window->isVisible() || QWindowPrivate::get(window)->inClose) {
                return false;
            }
            event->ignore();
            HL_LOG(hos::logger::LogLevel::Info,
                   "Hosted platform: the window system asked to close the window '{}'; refused, it stays "
                   "until the application hides it",
                   window->title());
            return true;
        case QEvent::Show:
            OnShow(*window);
            return false;
        default:
            if (window->isVisible() && !window->isExposed()) {
                ScheduleMapCheck();
            }
            return false;
    }
}

void ManagedWindowPolicy::OnShow(QWindow& window) {
    // The desktop entry is named after the application: X11's WM_CLASS carries the application's
    // name already, and this gives a Wayland compositor the same name as the window's app id.
    if (QGuiApplication::desktopFileName().isEmpty()) {
        QGuiApplication::setDesktopFileName(QCoreApplication::applicationName());
    }
    if (m_policy == WindowPolicy::Consent) {
        // The platform window exists by now and is not mapped yet, so the type and the keep-above
        // state reach the window manager with the map.
        if (window.type() == Qt::Window) {
            window.setFlags((window.flags() & ~Qt::WindowType_Mask) | Qt::Dialog | Qt::WindowStaysOnTopHint);
        }
        window.raise();
        // Before the map this is remembered by the platform window and done once it is mapped.
        window.requestActivate();
    }
    ScheduleMapCheck();
}

void ManagedWindowPolicy::ScheduleMapCheck() {
    // Only an X11 window manager takes over map requests; a Wayland surface is the compositor's to
    // show once it has configured it, and withdrawing it would only make a new surface.
    if (!m_mapCheck.isActive() && QGuiApplication::platformName() == QLatin1String("xcb")) {
        m_mapCheck.start(m_mapCheckDelay);
    }
}

void ManagedWindowPolicy::MapShownWindowsAgain() {
    bool unmapped = false;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        // A minimised window is unmapped on purpose; a window the application hid is not shown.
        if (!IsManagedTopLevel(*window) || !window->isVisible() || window->isExposed() ||
            window->windowStates().testFlag(Qt::WindowMinimized) || window->handle() == nullptr) {
            continue;
        }
        unmapped = true;
        HL_LOG(hos::logger::LogLevel::Warning,
               "Hosted platform: the window '{}' is shown, yet the display has not mapped it after {} ms; "
               "mapping it again",
               window->title(), m_mapCheckDelay.count());
        // Withdrawn and mapped again at the window system only: the application's own state
        // (visible, as it asked) does not change, so nothing of the document sees this.
        window->handle()->setVisible(false);
        window->handle()->setVisible(true);
    }
    if (unmapped) {
        m_mapCheckDelay = std::min(m_mapCheckDelay * 2, kLastMapCheck);
        m_mapCheck.start(m_mapCheckDelay);
    } else {
        m_mapCheckDelay = kFirstMapCheck;
    }
}

// Runs whenever a QCoreApplication is constructed, so main adds no step of its own.
Q_COREAPP_STARTUP_FUNCTION(InstallManagedWindowPolicy)

}  // namespace hos::platform
