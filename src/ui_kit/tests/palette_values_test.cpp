// The colours and gradients of both palettes, read the way QML reads them (the meta-object property
// of the lower-case name) and the way C++ reads them (the getter).
#include "style/palette_factory.h"

#include <ui_kit/style/gradient.h>
#include <ui_kit/style/i_palette.h>

#include <gtest/gtest.h>

#include <QVariant>

#include <string>

namespace vdi::uikit::utils::style {
namespace {

struct ColourRow {
    const char* property;
    QColor (IPalette::*getter)() const;
    const char* light;  // nullptr: unset, an invalid colour
    const char* dark;
};

// clang-format off
const ColourRow kColourTable[] = {
    {"backgroundPrimary",          &IPalette::BackgroundPrimary,          "#FFFFFF",   "#050505"},
    {"backgroundSubPrimary",       &IPalette::BackgroundSubPrimary,       "#F7F8FA",   "#141414"},
    {"backgroundSecondary",        &IPalette::BackgroundSecondary,        "#EBEFF5",   "#242424"},
    {"backgroundBase",             &IPalette::BackgroundBase,             "#D6212529", "#D6212529"},
    {"contentConstant",            &IPalette::ContentConstant,            "#FFFFFF",   "#FFFFFF"},
    {"contentPrimary",             &IPalette::ContentPrimary,             "#212529",   "#FFFFFF"},
    {"contentSubPrimary",          &IPalette::ContentSubPrimary,          "#444647",   "#B2FFFFFF"},
    {"contentSecondary",           &IPalette::ContentSecondary,           "#76787A",   "#8FFFFFFF"},
    {"contentDisabled",            &IPalette::ContentDisabled,            "#BCBFC2",   "#57FFFFFF"},
    {"contentBorder",              &IPalette::ContentBorder,              "#D2D4D6",   "#29FFFFFF"},
    {"contentBackground",          &IPalette::ContentBackground,          "#E9EAEB",   "#1FFFFFFF"},
    {"persistentAccentPrimary",    &IPalette::PersistentAccentPrimary,    nullptr,     nullptr},
    {"persistentAccentSubPrimary", &IPalette::PersistentAccentSubPrimary, nullptr,     nullptr},
    {"persistentAccentSecondary",  &IPalette::PersistentAccentSecondary,  nullptr,     nullptr},
    {"persistentAccentDisabled",   &IPalette::PersistentAccentDisabled,   nullptr,     nullptr},
    {"persistentAccentBorder",     &IPalette::PersistentAccentBorder,     nullptr,     nullptr},
    {"persistentAccentBackground", &IPalette::PersistentAccentBackground, nullptr,     nullptr},
    {"systemErrorPrimary",         &IPalette::SystemErrorPrimary,         "#F22A41",   "#F22A41"},
    {"systemSuccessPrimary",       &IPalette::SystemSuccessPrimary,       nullptr,     nullptr},
    {"systemWarningPrimary",       &IPalette::SystemWarningPrimary,       nullptr,     "#F3BD3D"},
    {"systemErrorSecondary",       &IPalette::SystemErrorSecondary,       nullptr,     nullptr},
    {"systemSuccessSecondary",     &IPalette::SystemSuccessSecondary,     nullptr,     nullptr},
    {"systemWarningSecondary",     &IPalette::SystemWarningSecondary,     nullptr,     nullptr},
    {"bluePrimary",                &IPalette::BluePrimary,                nullptr,     nullptr},
    {"blueSubPrimary",             &IPalette::BlueSubPrimary,             nullptr,     nullptr},
    {"blueSecondary",              &IPalette::BlueSecondary,              nullptr,     nullptr},
    {"blueDisabled",               &IPalette::BlueDisabled,               nullptr,     nullptr},
    {"blueBorder",                 &IPalette::BlueBorder,                 nullptr,     nullptr},
    {"blueBackground",             &IPalette::BlueBackground,             nullptr,     nullptr},
    {"greenSecondary",             &IPalette::GreenSecondary,             nullptr,     nullptr},
    {"greenBorder",                &IPalette::GreenBorder,                nullptr,     nullptr},
    {"greenBackground",            &IPalette::GreenBackground,            nullptr,     nullptr},
    {"purplePrimary",              &IPalette::PurplePrimary,              nullptr,     "#8C8CFF"},
    {"purpleSubPrimary",           &IPalette::PurpleSubPrimary,           nullptr,     "#9C9CFF"},
    {"purpleSecondary",            &IPalette::PurpleSecondary,            nullptr,     "#ABABFF"},
    {"purpleDisabled",             &IPalette::PurpleDisabled,             nullptr,     "#478C8CFF"},
    {"purpleBorder",               &IPalette::PurpleBorder,               nullptr,     "#338C8CFF"},
    {"purpleBackground",           &IPalette::PurpleBackground,           nullptr,     "#1F8C8CFF"},
    {"systemWarningBackground",    &IPalette::SystemWarningBackground,    nullptr,     "#29F3BD3D"},
};

const struct {
    const char* property;
    Gradient* (IPalette::*getter)() const;
    const char* start;
    const char* stop;
} kGradientTable[] = {
    {"greenPrimary",    &IPalette::GreenPrimary,    "#6AD62B",   "#1CA88C"},
    {"greenSubPrimary", &IPalette::GreenSubPrimary, "#296AD62B", "#291CA88C"},
    {"greenDisabled",   &IPalette::GreenDisabled,   "#9981DC4C", "#9941B79D"},
};
// clang-format on

// "#aarrggbb", or "invalid" for an unset colour, so that black or transparent never pass for unset.
std::string Describe(const QColor& colour) {
    return colour.isValid() ? colour.name(QColor::HexArgb).toStdString() : std::string("invalid");
}

std::string Expected(const char* value) {
    QColor colour;
    if (value != nullptr) colour.setNamedColor(QLatin1StringView(value));
    return Describe(colour);
}

TEST(PaletteValues, BothPalettesMatchTheirTablesThroughPropertiesAndGetters) {
    PaletteFactory factory;
    for (const auto id : {PaletteId::Light, PaletteId::Dark}) {
        SCOPED_TRACE(static_cast<int>(id));
        const auto palette = factory.GetPalette(id);
        ASSERT_NE(palette, nullptr);
        EXPECT_EQ(palette->Id(), id);
        for (const auto& row : kColourTable) {
            const auto expected = Expected(id == PaletteId::Light ? row.light : row.dark);
            const QVariant fromProperty = palette->property(row.property);
            ASSERT_TRUE(fromProperty.isValid()) << "no property " << row.property;
            EXPECT_EQ(Describe(fromProperty.value<QColor>()), expected) << row.property;
            EXPECT_EQ(Describe(((*palette).*row.getter)()), expected) << row.property;
        }
        for (const auto& row : kGradientTable) {
            auto* gradient = palette->property(row.property).value<Gradient*>();
            ASSERT_NE(gradient, nullptr) << row.property;
            EXPECT_EQ(gradient, ((*palette).*row.getter)()) << row.property;
            EXPECT_EQ(Describe(gradient->property("startColor").value<QColor>()), Expected(row.start));
            EXPECT_EQ(Describe(gradient->property("stopColor").value<QColor>()), Expected(row.stop));
            EXPECT_EQ(gradient->property("startPoint").toDouble(), 0.0) << row.property;
            EXPECT_EQ(gradient->property("stopPoint").toDouble(), 1.0) << row.property;
        }
    }
}

}  // namespace
}  // namespace vdi::uikit::utils::style
