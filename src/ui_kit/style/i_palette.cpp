#include <ui_kit/style/i_palette.h>

#include <QJSEngine>

namespace vdi::uikit::utils::style {

IPalette::IPalette() {
    // The factory owns the palette; QML must never collect it, although it has no parent.
    QJSEngine::setObjectOwnership(this, QJSEngine::CppOwnership);
}

IPalette::~IPalette() = default;

// No palette of the kit sets the persistent accents: they are invalid colours everywhere.
QColor IPalette::PersistentAccentPrimary() const {
    return {};
}

QColor IPalette::PersistentAccentSubPrimary() const {
    return {};
}

QColor IPalette::PersistentAccentSecondary() const {
    return {};
}

QColor IPalette::PersistentAccentDisabled() const {
    return {};
}

QColor IPalette::PersistentAccentBorder() const {
    return {};
}

QColor IPalette::PersistentAccentBackground() const {
    return {};
}

}  // namespace vdi::uikit::utils::style
