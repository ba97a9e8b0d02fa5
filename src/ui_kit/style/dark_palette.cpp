#include "style/dark_palette.h"

#include "style/palette_helpers.h"

namespace vdi::uikit::utils::style {

DarkPalette::DarkPalette()
    : m_backgroundPrimary(NamedColor("#050505")),
      m_backgroundSubPrimary(NamedColor("#141414")),
      m_backgroundSecondary(NamedColor("#242424")),
      m_backgroundBase(NamedColor("#D6212529")),
      m_contentConstant(NamedColor("#FFFFFF")),
      m_contentPrimary(NamedColor("#FFFFFF")),
      m_contentSubPrimary(NamedColor("#B2FFFFFF")),
      m_contentSecondary(NamedColor("#8FFFFFFF")),
      m_contentDisabled(NamedColor("#57FFFFFF")),
      m_contentBorder(NamedColor("#29FFFFFF")),
      m_contentBackground(NamedColor("#1FFFFFFF")),
      m_systemErrorPrimary(NamedColor("#F22A41")),
      m_systemWarningPrimary(NamedColor("#F3BD3D")),
      m_purplePrimary(NamedColor("#8C8CFF")),
      m_purpleSubPrimary(NamedColor("#9C9CFF")),
      m_purpleSecondary(NamedColor("#ABABFF")),
      m_purpleDisabled(NamedColor("#478C8CFF")),
      m_purpleBorder(NamedColor("#338C8CFF")),
      m_purpleBackground(NamedColor("#1F8C8CFF")),
      m_systemWarningBackground(NamedColor("#29F3BD3D")),
      m_greenPrimary(MakeGreenPrimaryGradient()),
      m_greenSubPrimary(MakeGreenSubPrimaryGradient()),
      m_greenDisabled(MakeGreenDisabledGradient()) {}

DarkPalette::~DarkPalette() = default;

PaletteId DarkPalette::Id() const {
    return PaletteId::Dark;
}

QColor DarkPalette::BackgroundPrimary() const {
    return m_backgroundPrimary;
}
QColor DarkPalette::BackgroundSubPrimary() const {
    return m_backgroundSubPrimary;
}
QColor DarkPalette::BackgroundSecondary() const {
    return m_backgroundSecondary;
}
QColor DarkPalette::BackgroundBase() const {
    return m_backgroundBase;
}
QColor DarkPalette::ContentConstant() const {
    return m_contentConstant;
}
QColor DarkPalette::ContentPrimary() const {
    return m_contentPrimary;
}
QColor DarkPalette::ContentSubPrimary() const {
    return m_contentSubPrimary;
}
QColor DarkPalette::ContentSecondary() const {
    return m_contentSecondary;
}
QColor DarkPalette::ContentDisabled() const {
    return m_contentDisabled;
}
QColor DarkPalette::ContentBorder() const {
    return m_contentBorder;
}
QColor DarkPalette::ContentBackground() const {
    return m_contentBackground;
}
QColor DarkPalette::SystemErrorPrimary() const {
    return m_systemErrorPrimary;
}
QColor DarkPalette::SystemSuccessPrimary() const {
    return {};
}
QColor DarkPalette::SystemWarningPrimary() const {
    return m_systemWarningPrimary;
}
QColor DarkPalette::SystemErrorSecondary() const {
    return {};
}
QColor DarkPalette::SystemSuccessSecondary() const {
    return {};
}
QColor DarkPalette::SystemWarningSecondary() const {
    return {};
}
QColor DarkPalette::BluePrimary() const {
    return {};
}
QColor DarkPalette::BlueSubPrimary() const {
    return {};
}
QColor DarkPalette::BlueSecondary() const {
    return {};
}
QColor DarkPalette::BlueDisabled() const {
    return {};
}
QColor DarkPalette::BlueBorder() const {
    return {};
}
QColor DarkPalette::BlueBackground() const {
    return {};
}
QColor DarkPalette::GreenSecondary() const {
    return {};
}
QColor DarkPalette::GreenBorder() const {
    return {};
}
QColor DarkPalette::GreenBackground() const {
    return {};
}
QColor DarkPalette::PurplePrimary() const {
    return m_purplePrimary;
}
QColor DarkPalette::PurpleSubPrimary() const {
    return m_purpleSubPrimary;
}
QColor DarkPalette::PurpleSecondary() const {
    return m_purpleSecondary;
}
QColor DarkPalette::PurpleDisabled() const {
    return m_purpleDisabled;
}
QColor DarkPalette::PurpleBorder() const {
    return m_purpleBorder;
}
QColor DarkPalette::PurpleBackground() const {
    return m_purpleBackground;
}
QColor DarkPalette::SystemWarningBackground() const {
    return m_systemWarningBackground;
}

Gradient* DarkPalette::GreenPrimary() const {
    return m_greenPrimary.get();
}

Gradient* DarkPalette::GreenSubPrimary() const {
    return m_greenSubPrimary.get();
}

Gradient* DarkPalette::GreenDisabled() const {
    return m_greenDisabled.get();
}

}  // namespace vdi::uikit::utils::style
