#pragma once

#include <ui_kit/style/gradient.h>
#include <ui_kit/style/palette_id.h>

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QObject>

namespace vdi::uikit::utils::style {

// A set of named, read-only colours and gradients, exposed to QML as properties
// (`backgroundPrimary` for BackgroundPrimary and so on, 42 in all).
//
// A colour that a palette leaves unset is an invalid QColor, never black or transparent.
// A palette never changes after construction: ColorChanged is the notify signal of every property
// and is never emitted; QML learns of another palette through PaletteProvider::PaletteChanged.
// Gradients returned here are owned by the palette and live as long as it does.
// Only the PersistentAccent getters are implemented here; everything else is up to the concrete
// palette. Has no QObject parent; main thread.
class IPalette : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QColor backgroundPrimary READ BackgroundPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor backgroundSubPrimary READ BackgroundSubPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor backgroundSecondary READ BackgroundSecondary NOTIFY ColorChanged)
    Q_PROPERTY(QColor backgroundBase READ BackgroundBase NOTIFY ColorChanged)
    Q_PROPERTY(QColor contentConstant READ ContentConstant NOTIFY ColorChanged)
    Q_PROPERTY(QColor contentPrimary READ ContentPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor contentSubPrimary READ ContentSubPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor contentSecondary READ ContentSecondary NOTIFY ColorChanged)
    Q_PROPERTY(QColor contentDisabled READ ContentDisabled NOTIFY ColorChanged)
    Q_PROPERTY(QColor contentBorder READ ContentBorder NOTIFY ColorChanged)
    Q_PROPERTY(QColor contentBackground READ ContentBackground NOTIFY ColorChanged)
    Q_PROPERTY(QColor persistentAccentPrimary READ PersistentAccentPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor persistentAccentSubPrimary READ PersistentAccentSubPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor persistentAccentSecondary READ PersistentAccentSecondary NOTIFY ColorChanged)
    Q_PROPERTY(QColor persistentAccentDisabled READ PersistentAccentDisabled NOTIFY ColorChanged)
    Q_PROPERTY(QColor persistentAccentBorder READ PersistentAccentBorder NOTIFY ColorChanged)
    Q_PROPERTY(QColor persistentAccentBackground READ PersistentAccentBackground NOTIFY ColorChanged)
    Q_PROPERTY(QColor systemErrorPrimary READ SystemErrorPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor systemSuccessPrimary READ SystemSuccessPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor systemWarningPrimary READ SystemWarningPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor systemErrorSecondary READ SystemErrorSecondary NOTIFY ColorChanged)
    Q_PROPERTY(QColor systemSuccessSecondary READ SystemSuccessSecondary NOTIFY ColorChanged)
    Q_PROPERTY(QColor systemWarningSecondary READ SystemWarningSecondary NOTIFY ColorChanged)
    Q_PROPERTY(QColor bluePrimary READ BluePrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor blueSubPrimary READ BlueSubPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor blueSecondary READ BlueSecondary NOTIFY ColorChanged)
    Q_PROPERTY(QColor blueDisabled READ BlueDisabled NOTIFY ColorChanged)
    Q_PROPERTY(QColor blueBorder READ BlueBorder NOTIFY ColorChanged)
    Q_PROPERTY(QColor blueBackground READ BlueBackground NOTIFY ColorChanged)
    Q_PROPERTY(vdi::uikit::utils::style::Gradient* greenPrimary READ GreenPrimary NOTIFY ColorChanged)
    Q_PROPERTY(vdi::uikit::utils::style::Gradient* greenSubPrimary READ GreenSubPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor greenSecondary READ GreenSecondary NOTIFY ColorChanged)
    Q_PROPERTY(vdi::uikit::utils::style::Gradient* greenDisabled READ GreenDisabled NOTIFY ColorChanged)
    Q_PROPERTY(QColor greenBorder READ GreenBorder NOTIFY ColorChanged)
    Q_PROPERTY(QColor greenBackground READ GreenBackground NOTIFY ColorChanged)
    Q_PROPERTY(QColor purplePrimary READ PurplePrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor purpleSubPrimary READ PurpleSubPrimary NOTIFY ColorChanged)
    Q_PROPERTY(QColor purpleSecondary READ PurpleSecondary NOTIFY ColorChanged)
    Q_PROPERTY(QColor purpleDisabled READ PurpleDisabled NOTIFY ColorChanged)
    Q_PROPERTY(QColor purpleBorder READ PurpleBorder NOTIFY ColorChanged)
    Q_PROPERTY(QColor purpleBackground READ PurpleBackground NOTIFY ColorChanged)
    Q_PROPERTY(QColor systemWarningBackground READ SystemWarningBackground NOTIFY ColorChanged)

public:
    ~IPalette() override;

    virtual PaletteId Id() const = 0;

    virtual QColor BackgroundPrimary() const = 0;
    virtual QColor BackgroundSubPrimary() const = 0;
    virtual QColor BackgroundSecondary() const = 0;
    virtual QColor BackgroundBase() const = 0;
    virtual QColor ContentConstant() const = 0;
    virtual QColor ContentPrimary() const = 0;
    virtual QColor ContentSubPrimary() const = 0;
    virtual QColor ContentSecondary() const = 0;
    virtual QColor ContentDisabled() const = 0;
    virtual QColor ContentBorder() const = 0;
    virtual QColor ContentBackground() const = 0;
    virtual QColor PersistentAccentPrimary() const;
    virtual QColor PersistentAccentSubPrimary() const;
    virtual QColor PersistentAccentSecondary() const;
    virtual QColor PersistentAccentDisabled() const;
    virtual QColor PersistentAccentBorder() const;
    virtual QColor PersistentAccentBackground() const;
    virtual QColor SystemErrorPrimary() const = 0;
    virtual QColor SystemSuccessPrimary() const = 0;
    virtual QColor SystemWarningPrimary() const = 0;
    virtual QColor SystemErrorSecondary() const = 0;
    virtual QColor SystemSuccessSecondary() const = 0;
    virtual QColor SystemWarningSecondary() const = 0;
    virtual QColor BluePrimary() const = 0;
    virtual QColor BlueSubPrimary() const = 0;
    virtual QColor BlueSecondary() const = 0;
    virtual QColor BlueDisabled() const = 0;
    virtual QColor BlueBorder() const = 0;
    virtual QColor BlueBackground() const = 0;
    virtual Gradient* GreenPrimary() const = 0;
    virtual Gradient* GreenSubPrimary() const = 0;
    virtual QColor GreenSecondary() const = 0;
    virtual Gradient* GreenDisabled() const = 0;
    virtual QColor GreenBorder() const = 0;
    virtual QColor GreenBackground() const = 0;
    virtual QColor PurplePrimary() const = 0;
    virtual QColor PurpleSubPrimary() const = 0;
    virtual QColor PurpleSecondary() const = 0;
    virtual QColor PurpleDisabled() const = 0;
    virtual QColor PurpleBorder() const = 0;
    virtual QColor PurpleBackground() const = 0;
    virtual QColor SystemWarningBackground() const = 0;

signals:
    void ColorChanged();

protected:
    IPalette();
};

}  // namespace vdi::uikit::utils::style
