#pragma once

#include <ui_kit/style/gradient.h>
#include <ui_kit/style/i_palette.h>

#include <array>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>

namespace vdi::uikit::utils::style {

// The colours a concrete palette may set, one per getter of IPalette that returns a QColor,
// in the order of those getters (the persistent accents are not here: no palette sets them).
enum class PaletteColor : std::size_t {
    BackgroundPrimary,
    BackgroundSubPrimary,
    BackgroundSecondary,
    BackgroundBase,
    ContentConstant,
    ContentPrimary,
    ContentSubPrimary,
    ContentSecondary,
    ContentDisabled,
    ContentBorder,
    ContentBackground,
    SystemErrorPrimary,
    SystemSuccessPrimary,
    SystemWarningPrimary,
    SystemErrorSecondary,
    SystemSuccessSecondary,
    SystemWarningSecondary,
    BluePrimary,
    BlueSubPrimary,
    BlueSecondary,
    BlueDisabled,
    BlueBorder,
    BlueBackground,
    GreenSecondary,
    GreenBorder,
    GreenBackground,
    PurplePrimary,
    PurpleSubPrimary,
    PurpleSecondary,
    PurpleDisabled,
    PurpleBorder,
    PurpleBackground,
    SystemWarningBackground,
    Count
};

// A palette built from its id and a table of colour values: the one implementation of every getter,
// which LightPalette and DarkPalette fill with their own tables. Values are as QColor::setNamedColor
// reads them ("#RRGGBB", or "#AARRGGBB" with the alpha first); a colour missing from the table is an
// invalid QColor. The three green gradients are the same in every palette; the palette owns them.
// Nothing changes after construction. No QObject parent; main thread.
class TablePalette : public IPalette {
    Q_OBJECT

public:
    using ColorValue = std::pair<PaletteColor, const char*>;

    ~TablePalette() override;

    PaletteId Id() const final;

    QColor BackgroundPrimary() const final;
    QColor BackgroundSubPrimary() const final;
    QColor BackgroundSecondary() const final;
    QColor BackgroundBase() const final;
    QColor ContentConstant() const final;
    QColor ContentPrimary() const final;
    QColor ContentSubPrimary() const final;
    QColor ContentSecondary() const final;
    QColor ContentDisabled() const final;
    QColor ContentBorder() const final;
    QColor ContentBackground() const final;
    QColor SystemErrorPrimary() const final;
    QColor SystemSuccessPrimary() const final;
    QColor SystemWarningPrimary() const final;
    QColor SystemErrorSecondary() const final;
    QColor SystemSuccessSecondary() const final;
    QColor SystemWarningSecondary() const final;
    QColor BluePrimary() const final;
    QColor BlueSubPrimary() const final;
    QColor BlueSecondary() const final;
    QColor BlueDisabled() const final;
    QColor BlueBorder() const final;
    QColor BlueBackground() const final;
    Gradient* GreenPrimary() const final;
    Gradient* GreenSubPrimary() const final;
    QColor GreenSecondary() const final;
    Gradient* GreenDisabled() const final;
    QColor GreenBorder() const final;
    QColor GreenBackground() const final;
    QColor PurplePrimary() const final;
    QColor PurpleSubPrimary() const final;
    QColor PurpleSecondary() const final;
    QColor PurpleDisabled() const final;
    QColor PurpleBorder() const final;
    QColor PurpleBackground() const final;
    QColor SystemWarningBackground() const final;

protected:
    TablePalette(PaletteId id, std::initializer_list<ColorValue> colors);

private:
    QColor At(PaletteColor color) const;

    PaletteId m_id;
    std::array<QColor, static_cast<std::size_t>(PaletteColor::Count)> m_colors;
    std::shared_ptr<Gradient> m_greenPrimary;
    std::shared_ptr<Gradient> m_greenSubPrimary;
    std::shared_ptr<Gradient> m_greenDisabled;
};

}  // namespace vdi::uikit::utils::style
