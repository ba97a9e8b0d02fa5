#include <ui_kit/style/gradient.h>

#include <QJSEngine>

namespace vdi::uikit::utils::style {

Gradient::Gradient(const QColor& startColor, double startPoint, const QColor& stopColor, double stopPoint)
    : m_startColor(startColor), m_startPoint(startPoint), m_stopColor(stopColor), m_stopPoint(stopPoint) {
    // The palette owns the gradient; QML must never collect it, although it has no parent.
    QJSEngine::setObjectOwnership(this, QJSEngine::CppOwnership);
}

Gradient::~Gradient() = default;

QColor Gradient::StartColor() const {
    return m_startColor;
}

double Gradient::StartPoint() const {
    return m_startPoint;
}

QColor Gradient::StopColor() const {
    return m_stopColor;
}

double Gradient::StopPoint() const {
    return m_stopPoint;
}

}  // namespace vdi::uikit::utils::style
