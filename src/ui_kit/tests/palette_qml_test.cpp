// The palette as the kit's controls see it: the context property "paletteProvider" read from QML.

#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>
#include <ui_kit/style/palette_provider.h>

#include <gtest/gtest.h>

#include <QColor>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>

#include <memory>
#include <string>

namespace vdi::uikit::utils::style {
namespace {

class PaletteFromQml : public ::testing::Test {
protected:
    void Connect(PaletteId initial) {
        m_interactor = CreatePaletteIdInteractor();
        m_interactor->SetPaletteId(initial);
        m_provider = CreatePaletteProvider(CreatePaletteFactory(), m_interactor);
        m_engine = std::make_unique<QQmlEngine>();
        m_engine->rootContext()->setContextProperty("paletteProvider", m_provider.get());
    }

    QVariant Evaluate(const QString& expression) {
        QQmlExpression evaluated(m_engine->rootContext(), nullptr, expression);
        const QVariant result = evaluated.evaluate();
        EXPECT_FALSE(evaluated.hasError()) << evaluated.error().toString().toStdString();
        return result;
    }

    std::string ColourOf(const QString& expression) {
        const QColor colour = Evaluate(expression).value<QColor>();
        return colour.isValid() ? colour.name(QColor::HexArgb).toStdString() : std::string("invalid");
    }

    std::unique_ptr<QObject> Create(const QByteArray& document) {
        QQmlComponent component(m_engine.get());
        component.setData(document, QUrl("qrc:/palette_test.qml"));
        std::unique_ptr<QObject> object(component.create());
        EXPECT_NE(object, nullptr) << component.errorString().toStdString();
        return object;
    }

    int m_argc = 1;
    char m_name[16] = "palette_qml";
    char* m_argv[2] = {m_name, nullptr};
    QGuiApplication m_application{m_argc, m_argv};
    std::shared_ptr<IPaletteIdInteractor> m_interactor;
    std::shared_ptr<PaletteProvider> m_provider;
    // Declared last so that it dies before the provider it reads.
    std::unique_ptr<QQmlEngine> m_engine;
};

TEST_F(PaletteFromQml, SystemWarningPrimaryIsInvalidInLightAndSetInDark) {
    Connect(PaletteId::Light);
    EXPECT_EQ(ColourOf("paletteProvider.palette.systemWarningPrimary"), "invalid");
    m_interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(ColourOf("paletteProvider.palette.systemWarningPrimary"), "#fff3bd3d");
}

TEST_F(PaletteFromQml, ColoursWithAlphaFirstReachQmlUnchanged) {
    Connect(PaletteId::Dark);
    EXPECT_EQ(ColourOf("paletteProvider.palette.contentSubPrimary"), "#b2ffffff");
    EXPECT_EQ(ColourOf("paletteProvider.palette.purpleDisabled"), "#478c8cff");
    EXPECT_EQ(ColourOf("paletteProvider.palette.backgroundBase"), "#d6212529");
    EXPECT_EQ(ColourOf("paletteProvider.palette.persistentAccentPrimary"), "invalid");
}

TEST_F(PaletteFromQml, GradientsAreReadableThroughThePalette) {
    Connect(PaletteId::Dark);
    EXPECT_EQ(ColourOf("paletteProvider.palette.greenPrimary.startColor"), "#ff6ad62b");
    EXPECT_EQ(ColourOf("paletteProvider.palette.greenSubPrimary.stopColor"), "#291ca88c");
    EXPECT_EQ(ColourOf("paletteProvider.palette.greenDisabled.startColor"), "#9981dc4c");
    EXPECT_DOUBLE_EQ(Evaluate("paletteProvider.palette.greenDisabled.stopPoint").toDouble(), 1.0);
    EXPECT_DOUBLE_EQ(Evaluate("paletteProvider.palette.greenPrimary.startPoint").toDouble(), 0.0);
}

TEST_F(PaletteFromQml, PaletteIsReadOnlyFromQml) {
    Connect(PaletteId::Dark);
    QQmlExpression assignment(m_engine->rootContext(), nullptr,
                              "paletteProvider.palette.contentPrimary = 'red'");
    assignment.evaluate();
    EXPECT_TRUE(assignment.hasError());
    EXPECT_EQ(ColourOf("paletteProvider.palette.contentPrimary"), "#ffffffff");
}

TEST_F(PaletteFromQml, BindingFollowsAPaletteChangeAndIgnoresAnUnknownId) {
    Connect(PaletteId::Dark);
    const auto object = Create(R"(
        import QtQuick
        QtObject {
            property var pal: paletteProvider ? paletteProvider.palette : null
            property color border: pal ? pal.contentBorder : "#1FFFFFFF"
            property color warning: pal ? pal.systemWarningBackground : "#29F3BD3D"
            property int evaluations: 0
            onPalChanged: evaluations += 1
        }
    )");
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->property("border").value<QColor>().name(QColor::HexArgb), "#29ffffff");
    const int evaluationsAtStart = object->property("evaluations").toInt();

    m_interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(object->property("border").value<QColor>().name(QColor::HexArgb), "#ffd2d4d6");
    EXPECT_FALSE(object->property("warning").value<QColor>().isValid());
    EXPECT_EQ(object->property("evaluations").toInt(), evaluationsAtStart + 1);

    m_interactor->SetPaletteId(static_cast<PaletteId>(3));
    m_interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(object->property("evaluations").toInt(), evaluationsAtStart + 1);
    EXPECT_EQ(object->property("border").value<QColor>().name(QColor::HexArgb), "#ffd2d4d6");
}

TEST_F(PaletteFromQml, PaletteIdIsNotExposedToQml) {
    Connect(PaletteId::Dark);
    EXPECT_EQ(Evaluate("typeof paletteProvider.palette.id").toString(), "undefined");
    EXPECT_EQ(Evaluate("typeof paletteProvider.palette.contentPrimary").toString(), "object");
}

}  // namespace
}  // namespace vdi::uikit::utils::style
