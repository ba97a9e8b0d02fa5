#pragma once

#include <common_utils_ui/keyboard/i_xkb_helper.h>

#include <QObject>

#include <memory>

namespace vdi::common_utils_ui {

// Makes sure the keyboard has a usable keymap before the user types: an application-wide event
// filter that tries at every focus-in and deletes itself once it has succeeded. Never swallows an
// event. A child of the object given to Create; Qt main thread only.
class KeyboardInit : public QObject {
    Q_OBJECT

public:
    // Throws hca::CheckFailedException with "parent is nullptr" for a null parent.
    static void Create(QObject* parent);

    // Installs itself as an event filter on the QCoreApplication instance; destruction removes it.
    KeyboardInit(std::unique_ptr<xkb_helper::IXkbHelper> helper, QObject* parent);
    ~KeyboardInit() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::unique_ptr<xkb_helper::IXkbHelper> m_helper;
};

}  // namespace vdi::common_utils_ui
