#pragma once

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include <vector>

namespace access_arbiter::testing {

// All items below `item` whose QML type is `typeName` (as "PushButton"), in tree order.
std::vector<QQuickItem*> FindItemsOfType(QQuickItem* item, const char* typeName);

// The dialog window the engine loaded, or null.
QQuickWindow* DialogWindow(QQmlApplicationEngine& engine);

// The dialog's rounded rectangle (the content item's first child).
QQuickItem* DialogRectangle(QQuickWindow& window);

// Clicks the centre of `item` with a real mouse press and release on its window.
void ClickItem(QQuickWindow& window, QQuickItem& item);

}  // namespace access_arbiter::testing
