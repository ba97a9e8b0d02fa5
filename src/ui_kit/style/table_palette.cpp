#include "style/table_palette.h"

namespace vdi::uikit::utils::style {

namespace {

QColor NamedColor(const char* name) {
    QColor color;
    color.setNamedColor(QLatin1StringView(name));
    return color;
}

std::shared_ptr<Gradient> MakeFullLengthGradient(const char* startColor, const char* stopColor) {
    return std::make_shared<Gradient>(NamedColor(startColor), 0.0, NamedColor(stopColor), 1.0);
}

}  // namespace

TablePalette::TablePalette(PaletteId id, std::initializer_list<ColorValue> colors)
    : m_id(id),
      m_greenPrimary(MakeFullLengthGradient("#6AD62B", "#1CA88C")),
      m_greenSubPrimary(MakeFullLengthGradient("#296AD62B", "#291CA88C")),
      m_greenDisabled(MakeFullLengthGradient("#9981DC4C", "#9941B79D")) {
    for (const auto& [color, name] : colors) {
        m_colors.at(static_cast<std::size_t>(color)) = NamedColor(name);
    }
}

TablePalette::~TablePalette() = default;

PaletteId TablePalette::Id() const {
    return m_id;
}

QColor TablePalette::At(PaletteColor color) const {
    return m_colors[static_cast<std::size_t>(color)];
}

// Every colour getter reads its own entry of the table.
#define HL_TABLE_PALETTE_COLOR(name)    \
    QColor TablePalette::name() const { \
        return At(PaletteColor::name);  \
    }

HL_TABLE_PALETTE_COLOR(BackgroundPrimary)
HL_TABLE_PALETTE_COLOR(BackgroundSubPrimary)
HL_TABLE_PALETTE_COLOR(BackgroundSecondary)
HL_TABLE_PALETTE_COLOR(BackgroundBase)
HL_TABLE_PALETTE_COLOR(ContentConstant)
HL_TABLE_PALETTE_COLOR(ContentPrimary)
HL_TABLE_PALETTE_COLOR(ContentSubPrimary)
HL_TABLE_PALETTE_COLOR(ContentSecondary)
HL_TABLE_PALETTE_COLOR(ContentDisabled)
HL_TABLE_PALETTE_COLOR(ContentBorder)
HL_TABLE_PALETTE_COLOR(ContentBackground)
HL_TABLE_PALETTE_COLOR(SystemErrorPrimary)
HL_TABLE_PALETTE_COLOR(SystemSuccessPrimary)
HL_TABLE_PALETTE_COLOR(SystemWarningPrimary)
HL_TABLE_PALETTE_COLOR(SystemErrorSecondary)
HL_TABLE_PALETTE_COLOR(SystemSuccessSecondary)
HL_TABLE_PALETTE_COLOR(SystemWarningSecondary)
HL_TABLE_PALETTE_COLOR(BluePrimary)
HL_TABLE_PALETTE_COLOR(BlueSubPrimary)
HL_TABLE_PALETTE_COLOR(BlueSecondary)
HL_TABLE_PALETTE_COLOR(BlueDisabled)
HL_TABLE_PALETTE_COLOR(BlueBorder)
HL_TABLE_PALETTE_COLOR(BlueBackground)
HL_TABLE_PALETTE_COLOR(GreenSecondary)
HL_TABLE_PALETTE_COLOR(GreenBorder)
HL_TABLE_PALETTE_COLOR(GreenBackground)
HL_TABLE_PALETTE_COLOR(PurplePrimary)
HL_TABLE_PALETTE_COLOR(PurpleSubPrimary)
HL_TABLE_PALETTE_COLOR(PurpleSecondary)
HL_TABLE_PALETTE_COLOR(PurpleDisabled)
HL_TABLE_PALETTE_COLOR(PurpleBorder)
HL_TABLE_PALETTE_COLOR(PurpleBackground)
HL_TABLE_PALETTE_COLOR(SystemWarningBackground)

#undef HL_TABLE_PALETTE_COLOR

Gradient* TablePalette::GreenPrimary() const {
    return m_greenPrimary.get();
}

Gradient* TablePalette::GreenSubPrimary() const {
    return m_greenSubPrimary.get();
}

Gradient* TablePalette::GreenDisabled() const {
    return m_greenDisabled.get();
}

}  // namespace vdi::uikit::utils::style
