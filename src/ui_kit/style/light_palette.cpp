#include "style/light_palette.h"

#include "style/palette_helpers.h"

namespace vdi::uikit::utils::style {

LightPalette::LightPalette()
    : m_backgroundPrimary(NamedColor("#FFFFFF")),
      m_backgroundSubPrimary(NamedColor("#F7F8FA")),
      m_backgroundSecondary(NamedColor("#EBEFF5")),
      m_backgroundBase(NamedColor("#D6212529")),
      m_contentConstant(NamedColor("#FFFFFF")),
      m_contentPrimary(NamedColor("#212529")),
      m_contentSubPrimary(NamedColor("#444647")),
      m_contentSecondary(NamedColor("#76787A")),
      m_contentDisabled(NamedColor("#BCBFC2")),
      m_contentBorder(NamedColor("#D2D4D6")),
      m_contentBackground(NamedColor("#E9EAEB")),
      m_systemErrorPrimary(NamedColor("#F22A41")),
      m_greenPrimary(MakeGreenPrimaryGradient()),
      m_greenSubPrimary(MakeGreenSubPrimaryGradient()),
      m_greenDisabled(MakeGreenDisabledGradient()) {}

LightPalette::~LightPalette() = default;

PaletteId LightPalette::Id() const {
    return PaletteId::Light;
}

QColor LightPalette::BackgroundPrimary() const {
    return m_backgroundPrimary;
}
QColor LightPalette::BackgroundSubPrimary() const {
    return m_backgroundSubPrimary;
}
QColor LightPalette::BackgroundSecondary() const {
    return m_backgroundSecondary;
}
QColor LightPalette::BackgroundBase() const {
    return m_backgroundBase;
}
QColor LightPalette::ContentConstant() const {
    return m_contentConstant;
}
QColor LightPalette::ContentPrimary() const {
    return m_contentPrimary;
}
QColor LightPalette::ContentSubPrimary() const {
    return m_contentSubPrimary;
}
QColor LightPalette::ContentSecondary() const {
    return m_contentSecondary;
}
QColor LightPalette::ContentDisabled() const {
    return m_contentDisabled;
}
QColor LightPalette::ContentBorder() const {
    return m_contentBorder;
}
QColor LightPalette::ContentBackground() const {
    return m_contentBackground;
}
QColor LightPalette::SystemErrorPrimary() const {
    return m_systemErrorPrimary;
}
QColor LightPalette::SystemSuccessPrimary() const {
    return {};
}
QColor LightPalette::SystemWarningPrimary() const {
    return {};
}
QColor LightPalette::SystemErrorSecondary() const {
    return {};
}
QColor LightPalette::SystemSuccessSecondary() const {
    return {};
}
QColor LightPalette::SystemWarningSecondary() const {
    return {};
}
QColor LightPalette::BluePrimary() const {
    return {};
}
QColor LightPalette::BlueSubPrimary() const {
    return {};
}
QColor LightPalette::BlueSecondary() const {
    return {};
}
QColor LightPalette::BlueDisabled() const {
    return {};
}
QColor LightPalette::BlueBorder() const {
    return {};
}
QColor LightPalette::BlueBackground() const {
    return {};
}
QColor LightPalette::GreenSecondary() const {
    return {};
}
QColor LightPalette::GreenBorder() const {
    return {};
}
QColor LightPalette::GreenBackground() const {
    return {};
}
QColor LightPalette::PurplePrimary() const {
    return {};
}
QColor LightPalette::PurpleSubPrimary() const {
    return {};
}
QColor LightPalette::PurpleSecondary() const {
    return {};
}
QColor LightPalette::PurpleDisabled() const {
    return {};
}
QColor LightPalette::PurpleBorder() const {
    return {};
}
QColor LightPalette::PurpleBackground() const {
    return {};
}
QColor LightPalette::SystemWarningBackground() const {
    return {};
}

Gradient* LightPalette::GreenPrimary() const {
    return m_greenPrimary.get();
}

Gradient* LightPalette::GreenSubPrimary() const {
    return m_greenSubPrimary.get();
}

Gradient* LightPalette::GreenDisabled() const {
    return m_greenDisabled.get();
}

}  // namespace vdi::uikit::utils::style
