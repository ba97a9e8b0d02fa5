#include <common_utils_ui/keyboard/keyboard_init.h>

#include <diagnostics/check.h>

#include <QCoreApplication>
#include <QEvent>

namespace vdi::common_utils_ui {

void KeyboardInit::Create(QObject* parent) {
    HCA_CHECK(parent != nullptr) << "parent is nullptr";
    new KeyboardInit(xkb_helper::CreateXkbHelper(), parent);
}

KeyboardInit::KeyboardInit(std::unique_ptr<xkb_helper::IXkbHelper> helper, QObject* parent)
    : QObject(parent), m_helper(std::move(helper)) {
    HCA_CHECK(m_helper != nullptr) << "Xkb helper is nullptr";
    if (auto* app = QCoreApplication::instance()) {
        app->installEventFilter(this);
    }
}

KeyboardInit::~KeyboardInit() {
    if (auto* app = QCoreApplication::instance()) {
        app->removeEventFilter(this);
    }
}

bool KeyboardInit::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && m_helper->TryInitKeyboardInFocus()) {
        deleteLater();
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vdi::common_utils_ui
