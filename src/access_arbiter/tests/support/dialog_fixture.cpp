#include "support/dialog_fixture.h"

#include <QTest>

namespace access_arbiter::testing {

std::vector<QQuickItem*> FindItemsOfType(QQuickItem* item, const char* typeName) {
    std::vector<QQuickItem*> found;
    const QByteArray prefix(typeName);
    for (QQuickItem* child : item != nullptr ? item->childItems() : QList<QQuickItem*>()) {
        const QByteArray className(child->metaObject()->className());
        // QML-defined types are named "<Type>_QMLTYPE_<n>" (or just "<Type>").
        if (className == prefix || className.startsWith(prefix + "_QML")) {
            found.push_back(child);
        }
        const auto below = FindItemsOfType(child, typeName);
        found.insert(found.end(), below.begin(), below.end());
    }
    return found;
}

QQuickWindow* DialogWindow(QQmlApplicationEngine& engine) {
    return qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
}

QQuickItem* DialogRectangle(QQuickWindow& window) {
    return window.contentItem()->childItems().value(0);
}

void ClickItem(QQuickWindow& window, QQuickItem& item) {
    const QPointF centre = item.mapToScene(QPointF(item.width() / 2, item.height() / 2));
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, centre.toPoint());
}

}  // namespace access_arbiter::testing
