#pragma once

#include <ui_kit/style/gradient.h>
#include <ui_kit/style/i_palette.h>

#include <memory>

namespace vdi::uikit::utils::style {

// The kit's dark palette, id 2. All values are fixed at construction; colours it
// leaves unset are invalid. Owns its three gradients. No QObject parent; main thread.
class DarkPalette final : public IPalette {
    Q_OBJECT

public:
    DarkPalette();
    ~DarkPalette() override;

    PaletteId Id() const override;

    QColor BackgroundPrimary() const override;
    QColor BackgroundSubPrimary() const override;
    QColor BackgroundSecondary() const override;
    QColor BackgroundBase() const override;
    QColor ContentConstant() const override;
    QColor ContentPrimary() const override;
    QColor ContentSubPrimary() const override;
    QColor ContentSecondary() const override;
    QColor ContentDisabled() const override;
    QColor ContentBorder() const override;
    QColor ContentBackground() const override;
    QColor SystemErrorPrimary() const override;
    QColor SystemSuccessPrimary() const override;
    QColor SystemWarningPrimary() const override;
    QColor SystemErrorSecondary() const override;
    QColor SystemSuccessSecondary() const override;
    QColor SystemWarningSecondary() const override;
    QColor BluePrimary() const override;
    QColor BlueSubPrimary() const override;
    QColor BlueSecondary() const override;
    QColor BlueDisabled() const override;
    QColor BlueBorder() const override;
    QColor BlueBackground() const override;
    Gradient* GreenPrimary() const override;
    Gradient* GreenSubPrimary() const override;
    QColor GreenSecondary() const override;
    Gradient* GreenDisabled() const override;
    QColor GreenBorder() const override;
    QColor GreenBackground() const override;
    QColor PurplePrimary() const override;
    QColor PurpleSubPrimary() const override;
    QColor PurpleSecondary() const override;
    QColor PurpleDisabled() const override;
    QColor PurpleBorder() const override;
    QColor PurpleBackground() const override;
    QColor SystemWarningBackground() const override;

private:
    QColor m_backgroundPrimary;
    QColor m_backgroundSubPrimary;
    QColor m_backgroundSecondary;
    QColor m_backgroundBase;
    QColor m_contentConstant;
    QColor m_contentPrimary;
    QColor m_contentSubPrimary;
    QColor m_contentSecondary;
    QColor m_contentDisabled;
    QColor m_contentBorder;
    QColor m_contentBackground;
    QColor m_systemErrorPrimary;
    QColor m_systemWarningPrimary;
    QColor m_purplePrimary;
    QColor m_purpleSubPrimary;
    QColor m_purpleSecondary;
    QColor m_purpleDisabled;
    QColor m_purpleBorder;
    QColor m_purpleBackground;
    QColor m_systemWarningBackground;
    std::shared_ptr<Gradient> m_greenPrimary;
    std::shared_ptr<Gradient> m_greenSubPrimary;
    std::shared_ptr<Gradient> m_greenDisabled;
};

}  // namespace vdi::uikit::utils::style
