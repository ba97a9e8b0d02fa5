#include "support/dialog_fixture.h"

namespace access_arbiter::testing {

QQuickWindow* DialogWindow(QQmlApplicationEngine& engine) {
    return qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
}

QQuickItem* DialogRectangle(QQuickWindow& window) {
    return window.contentItem()->childItems().value(0);
}

}  // namespace access_arbiter::testing
