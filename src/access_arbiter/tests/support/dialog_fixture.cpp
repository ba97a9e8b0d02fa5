#include "support/dialog_fixture.h"

#include <QTest>

namespace access_arbiter::testing {
namespace {

void Collect(QQuickItem* item, const QByteArray& prefix, std::vector<QQuickItem*>& found) {
    for (QQuickItem* child : item->childItems()) {
        const QByteArray className(child->metaObject()->className());
        // QML-defined types are named "<Type>_QMLTYPE_<n>" (or just "<Type>").
        if (className == prefix || className.startsWith(prefix + "_QML")) {
            found.push_back(child);
        }
        Collect(child, prefix, found);
    }
}

}  // namespace

std::vector<QQuickItem*> FindItemsOfType(QQuickItem* item, const char* typeName) {
    std::vector<QQuickItem*> found;
    if (item != nullptr) {
        Collect(item, QByteArray(typeName), found);
    }
    return found;
}

QQuickWindow* DialogWindow(QQmlApplicationEngine& engine) {
    const auto roots = engine.rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.first());
}

QQuickItem* DialogRectangle(QQuickWindow& window) {
    const auto children = window.contentItem()->childItems();
    return children.isEmpty() ? nullptr : children.first();
}

std::vector<QString> DialogTexts(QQuickWindow& window) {
    std::vector<QString> texts;
    auto* rect = DialogRectangle(window);
    for (auto* label : FindItemsOfType(rect, "TextLabel")) {
        // Button captions are TextLabels too; the first two labels are the title and description.
        if (texts.size() < 2) {
            texts.push_back(label->property("text").toString());
        }
    }
    for (auto* button : FindItemsOfType(rect, "PushButton")) {
        texts.push_back(button->property("text").toString());
    }
    return texts;
}

void ClickItem(QQuickWindow& window, QQuickItem& item) {
    const QPointF centre = item.mapToScene(QPointF(item.width() / 2, item.height() / 2));
    QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, centre.toPoint());
}

}  // namespace access_arbiter::testing
