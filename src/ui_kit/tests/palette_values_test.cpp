// The colours and gradients of both palettes, read the way QML reads them (through the meta-object
// property of the lower-case name) and the way C++ reads them (through the getter).

#include "style/palette_factory.h"

#include <ui_kit/style/gradient.h>
#include <ui_kit/style/i_palette.h>

#include <gtest/gtest.h>

#include <QMetaClassInfo>
#include <QMetaProperty>

#include <memory>
#include <set>
#include <string>

namespace vdi::uikit::utils::style {
namespace {

using Getter = QColor (IPalette::*)() const;

struct ColourRow {
    const char* property;
    Getter getter;
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
// clang-format on

using GradientGetter = Gradient* (IPalette::*)() const;

struct GradientRow {
    const char* property;
    GradientGetter getter;
    const char* start;
    const char* stop;
};

const GradientRow kGradientTable[] = {
    {"greenPrimary", &IPalette::GreenPrimary, "#6AD62B", "#1CA88C"},
    {"greenSubPrimary", &IPalette::GreenSubPrimary, "#296AD62B", "#291CA88C"},
    {"greenDisabled", &IPalette::GreenDisabled, "#9981DC4C", "#9941B79D"},
};

// "#RRGGBB" / "#AARRGGBB" in the normalised "#aarrggbb" form, or "invalid".
std::string Describe(const QColor& colour) {
    return colour.isValid() ? colour.name(QColor::HexArgb).toStdString() : std::string("invalid");
}

std::string Expected(const char* value) {
    if (value == nullptr) {
        return "invalid";
    }
    QColor colour;
    colour.setNamedColor(QLatin1StringView(value));
    EXPECT_TRUE(colour.isValid()) << value;
    return Describe(colour);
}

std::shared_ptr<IPalette> PaletteFor(PaletteId id) {
    PaletteFactory factory;
    auto palette = factory.GetPalette(id);
    EXPECT_NE(palette, nullptr);
    return palette;
}

void ExpectColours(PaletteId id, bool light) {
    const auto palette = PaletteFor(id);
    ASSERT_NE(palette, nullptr);
    for (const auto& row : kColourTable) {
        const auto expected = Expected(light ? row.light : row.dark);
        const auto fromProperty = palette->property(row.property);
        ASSERT_TRUE(fromProperty.isValid()) << "no property " << row.property;
        EXPECT_EQ(Describe(fromProperty.value<QColor>()), expected) << row.property;
        EXPECT_EQ(Describe(((*palette).*row.getter)()), expected) << row.property;
    }
}

void ExpectGradients(PaletteId id) {
    const auto palette = PaletteFor(id);
    ASSERT_NE(palette, nullptr);
    for (const auto& row : kGradientTable) {
        auto* gradient = palette->property(row.property).value<Gradient*>();
        ASSERT_NE(gradient, nullptr) << row.property;
        EXPECT_EQ(gradient, ((*palette).*row.getter)()) << row.property;
        EXPECT_EQ(Describe(gradient->StartColor()), Expected(row.start)) << row.property;
        EXPECT_EQ(Describe(gradient->StopColor()), Expected(row.stop)) << row.property;
        EXPECT_DOUBLE_EQ(gradient->StartPoint(), 0.0) << row.property;
        EXPECT_DOUBLE_EQ(gradient->StopPoint(), 1.0) << row.property;
        EXPECT_EQ(Describe(gradient->property("startColor").value<QColor>()), Expected(row.start));
        EXPECT_EQ(Describe(gradient->property("stopColor").value<QColor>()), Expected(row.stop));
        EXPECT_DOUBLE_EQ(gradient->property("startPoint").toDouble(), 0.0);
        EXPECT_DOUBLE_EQ(gradient->property("stopPoint").toDouble(), 1.0);
    }
}

TEST(PaletteValues, LightPaletteMatchesItsColourTable) {
    ExpectColours(PaletteId::Light, true);
}

TEST(PaletteValues, DarkPaletteMatchesItsColourTable) {
    ExpectColours(PaletteId::Dark, false);
}

TEST(PaletteValues, UnsetColoursAreInvalidAndNeverBlackOrTransparent) {
    for (const auto id : {PaletteId::Light, PaletteId::Dark}) {
        const auto palette = PaletteFor(id);
        ASSERT_NE(palette, nullptr);
        EXPECT_FALSE(palette->PersistentAccentPrimary().isValid());
        EXPECT_FALSE(palette->BluePrimary().isValid());
        EXPECT_NE(palette->BluePrimary(), QColor(Qt::black));
        EXPECT_NE(palette->BluePrimary(), QColor(Qt::transparent));
        EXPECT_EQ(palette->GreenBackground().spec(), QColor::Invalid);
    }
}

TEST(PaletteValues, BothPalettesCarryTheSameThreeGreenGradients) {
    ExpectGradients(PaletteId::Light);
    ExpectGradients(PaletteId::Dark);
}

TEST(PaletteValues, EachPaletteOwnsItsOwnGradientObjects) {
    const auto light = PaletteFor(PaletteId::Light);
    const auto dark = PaletteFor(PaletteId::Dark);
    ASSERT_NE(light, nullptr);
    ASSERT_NE(dark, nullptr);
    EXPECT_NE(light->GreenPrimary(), dark->GreenPrimary());
    EXPECT_EQ(light->GreenPrimary(), light->GreenPrimary());
    EXPECT_EQ(light->GreenPrimary()->parent(), nullptr);
    EXPECT_NE(light->GreenPrimary(), light->GreenSubPrimary());
    EXPECT_NE(light->GreenSubPrimary(), light->GreenDisabled());
}

TEST(PaletteValues, IdsAreOneForLightAndTwoForDark) {
    EXPECT_EQ(static_cast<int>(PaletteFor(PaletteId::Light)->Id()), 1);
    EXPECT_EQ(static_cast<int>(PaletteFor(PaletteId::Dark)->Id()), 2);
}

TEST(PaletteMetaObject, PaletteExposesFortyTwoReadOnlyPropertiesNotifiedByColorChanged) {
    const QMetaObject& meta = IPalette::staticMetaObject;
    ASSERT_EQ(meta.propertyCount() - meta.propertyOffset(), 42);
    std::set<std::string> names;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        names.insert(property.name());
        EXPECT_FALSE(property.isWritable()) << property.name();
        ASSERT_TRUE(property.hasNotifySignal()) << property.name();
        EXPECT_EQ(QByteArray(property.notifySignal().name()), "ColorChanged") << property.name();
    }
    EXPECT_EQ(names.size(), 42u);
    for (const auto& row : kColourTable) {
        EXPECT_EQ(names.count(row.property), 1u) << row.property;
    }
    for (const auto& row : kGradientTable) {
        EXPECT_EQ(names.count(row.property), 1u) << row.property;
    }
    EXPECT_EQ(meta.indexOfProperty("id"), -1);
}

TEST(PaletteMetaObject, GradientPropertiesAreReadOnlyAndNotifiedByGradientChanged) {
    const QMetaObject& meta = Gradient::staticMetaObject;
    ASSERT_EQ(meta.propertyCount() - meta.propertyOffset(), 4);
    for (const char* name : {"startColor", "startPoint", "stopColor", "stopPoint"}) {
        const int index = meta.indexOfProperty(name);
        ASSERT_GE(index, 0) << name;
        EXPECT_FALSE(meta.property(index).isWritable()) << name;
        EXPECT_EQ(QByteArray(meta.property(index).notifySignal().name()), "GradientChanged") << name;
    }
}

QByteArray ClassInfo(const QMetaObject& meta, const char* key) {
    const int index = meta.indexOfClassInfo(key);
    return index < 0 ? QByteArray("<missing>") : QByteArray(meta.classInfo(index).value());
}

TEST(PaletteMetaObject, QmlSeesPaletteAsAnonymousAndGradientAsUncreatable) {
    EXPECT_EQ(ClassInfo(IPalette::staticMetaObject, "QML.Element"), "anonymous");
    EXPECT_EQ(ClassInfo(Gradient::staticMetaObject, "QML.Element"), "auto");
    EXPECT_EQ(ClassInfo(Gradient::staticMetaObject, "QML.Creatable"), "false");
    const auto reason = ClassInfo(Gradient::staticMetaObject, "QML.UncreatableReason");
    EXPECT_NE(reason, "<missing>");
    EXPECT_FALSE(reason.isEmpty());
}

}  // namespace
}  // namespace vdi::uikit::utils::style
