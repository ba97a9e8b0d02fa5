#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QObject>

namespace vdi::uikit::utils::style {

// A two-stop linear gradient that a palette exposes to QML.
// Built only by palettes, never from QML; immutable after construction, so GradientChanged is
// declared for QML's bindings but never emitted. Has no QObject parent: the palette that made it
// owns it through a shared pointer. Main thread.
class Gradient : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Gradient is provided by a palette and cannot be created from QML")
    Q_PROPERTY(QColor startColor READ StartColor NOTIFY GradientChanged)
    Q_PROPERTY(double startPoint READ StartPoint NOTIFY GradientChanged)
    Q_PROPERTY(QColor stopColor READ StopColor NOTIFY GradientChanged)
    Q_PROPERTY(double stopPoint READ StopPoint NOTIFY GradientChanged)

public:
    Gradient(const QColor& startColor, double startPoint, const QColor& stopColor, double stopPoint);
    ~Gradient() override;

    QColor StartColor() const;
    double StartPoint() const;
    QColor StopColor() const;
    double StopPoint() const;

signals:
    void GradientChanged();

private:
    QColor m_startColor;
    double m_startPoint;
    QColor m_stopColor;
    double m_stopPoint;
};

}  // namespace vdi::uikit::utils::style
