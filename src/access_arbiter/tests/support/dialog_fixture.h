#pragma once

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>


namespace access_arbiter::testing {

// The dialog window the engine loaded, or null.
QQuickWindow* DialogWindow(QQmlApplicationEngine& engine);

// The dialog's rounded rectangle (the content item's first child).
QQuickItem* DialogRectangle(QQuickWindow& window);

}  // namespace access_arbiter::testing
