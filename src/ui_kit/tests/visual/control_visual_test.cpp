// Visual tests: a few controls rendered by the gallery's renderer and compared with the reference
// images in src/ui_kit/tests/visual/reference. A failed comparison keeps the rendered image and a
// map of the differences in <build>/visual-output for inspection. After an intended change of
// look, refresh the references with
//   ui-kit-gallery --render src/ui_kit/tests/visual/reference --only <Specimen,...>
#include "image_comparison.h"

#include <control_renderer.h>
#include <palette_switch.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace {

using vdi::uikit::gallery::ControlRenderer;
using vdi::uikit::gallery::PaletteName;
using vdi::uikit::gallery::PaletteSwitch;
using vdi::uikit::utils::style::PaletteId;
using vdi::uikit::visual::CompareImages;

// Anti-aliasing may move a channel a little between library versions; layout changes do not.
constexpr int kChannelTolerance = 24;
constexpr double kMaxDifferingShare = 0.002;

const QString kReferenceDir = QStringLiteral(HL_SOURCE_DIR "/src/ui_kit/tests/visual/reference");
const QString kOutputDir = QStringLiteral(HL_BINARY_DIR "/visual-output");

struct VisualCase {
    std::string specimen;
    PaletteId palette;
};

void PrintTo(const VisualCase& c, std::ostream* os) {
    *os << c.specimen << "/" << PaletteName(c.palette);
}

std::string VisualCaseName(const ::testing::TestParamInfo<VisualCase>& info) {
    return info.param.specimen + "_" + PaletteName(info.param.palette);
}

class ControlVisual : public ::testing::TestWithParam<VisualCase> {
protected:
    static void SetUpTestSuite() {
        vdi::uikit::gallery::PrepareOffscreenRendering();
    }

    void SetUp() override {
        if (QCoreApplication::instance() == nullptr)
            m_app = std::make_unique<QGuiApplication>(m_argc, m_argv);
        m_renderer = std::make_unique<ControlRenderer>(std::make_shared<PaletteSwitch>(PaletteId::Dark));
    }

    void TearDown() override {
        m_renderer.reset();
        m_app.reset();
    }

    int m_argc = 1;
    char m_programName[24] = "ui_kit_visual_tests";
    char* m_argv[2] = {m_programName, nullptr};
    std::unique_ptr<QGuiApplication> m_app;
    std::unique_ptr<ControlRenderer> m_renderer;
};

TEST_P(ControlVisual, RenderingMatchesTheReferenceImage) {
    const VisualCase param = GetParam();
    const QString name = QString::fromStdString(VisualCaseName({param, 0}));

    QString error;
    const QImage actual = m_renderer->Render(QString::fromStdString(param.specimen), param.palette, &error);
    ASSERT_FALSE(actual.isNull()) << error.toStdString();

    const QString referencePath = kReferenceDir + "/" + name + ".png";
    const QString actualPath = kOutputDir + "/" + name + ".png";
    const QString mapPath = kOutputDir + "/" + name + "_diff.png";
    QDir().mkpath(kOutputDir);
    QFile::remove(actualPath);
    QFile::remove(mapPath);

    const QImage expected(referencePath);
    if (expected.isNull()) {
        actual.save(actualPath);
        FAIL() << "no reference image " << referencePath.toStdString() << "; the rendering is in "
               << actualPath.toStdString();
    }

    const auto difference = CompareImages(actual, expected, kChannelTolerance);
    const qsizetype allowed = static_cast<qsizetype>(expected.width() * expected.height() * kMaxDifferingShare);
    const bool matches = difference.sameSize && difference.differingPixels <= allowed;
    if (!matches) {
        actual.save(actualPath);
        if (!difference.map.isNull())
            difference.map.save(mapPath);
    }
    EXPECT_TRUE(difference.sameSize) << "rendered " << actual.width() << "x" << actual.height() << ", reference "
                                     << expected.width() << "x" << expected.height() << "; kept "
                                     << actualPath.toStdString();
    EXPECT_LE(difference.differingPixels, allowed)
        << "largest channel difference " << difference.maxChannelDelta << "; kept " << actualPath.toStdString()
        << " and " << mapPath.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Specimens, ControlVisual,
    ::testing::ValuesIn([] {
        std::vector<VisualCase> cases;
        for (const char* specimen : {"PushButton", "TextLabel", "CloseButton", "Toast", "RoundedRect", "CheckBox", "Loader"}) {
            for (const auto palette : {PaletteId::Dark, PaletteId::Light})
                cases.push_back({specimen, palette});
        }
        return cases;
    }()),
    VisualCaseName);

class ControlRendering : public ControlVisual {};

TEST_F(ControlRendering, UnknownSpecimenGivesAnErrorAndNoImage) {
    QString error;
    const QImage image = m_renderer->Render("NoSuchControl", PaletteId::Dark, &error);
    EXPECT_TRUE(image.isNull());
    EXPECT_NE(error.indexOf("NoSuchControl"), -1) << error.toStdString();
}

TEST_F(ControlRendering, EverySpecimenRendersInBothPalettesWithoutWarnings) {
    const QStringList names = ControlRenderer::SpecimenNames();
    ASSERT_GE(names.size(), 15);
    for (const QString& name : names) {
        for (const auto palette : {PaletteId::Light, PaletteId::Dark}) {
            QString error;
            const QImage image = m_renderer->Render(name, palette, &error);
            EXPECT_FALSE(image.isNull()) << name.toStdString() << ": " << error.toStdString();
        }
    }
}

TEST_F(ControlRendering, PaletteChangesTheBackground) {
    QString error;
    const QImage dark = m_renderer->Render("TextLabel", PaletteId::Dark, &error);
    const QImage light = m_renderer->Render("TextLabel", PaletteId::Light, &error);
    ASSERT_FALSE(dark.isNull());
    ASSERT_FALSE(light.isNull());
    // Inside the rounded frame, away from any text: the palette's backgroundPrimary.
    EXPECT_EQ(QColor(dark.pixel(dark.width() - 8, dark.height() / 2)), QColor("#050505"));
    EXPECT_EQ(QColor(light.pixel(light.width() - 8, light.height() / 2)), QColor("#FFFFFF"));
}

TEST_F(ControlRendering, PaletteSwitchFlipsTheProvidersPalette) {
    PaletteSwitch paletteSwitch(PaletteId::Light);
    QSignalSpy darkChanged(&paletteSwitch, &PaletteSwitch::DarkChanged);
    QSignalSpy paletteChanged(paletteSwitch.Provider(),
                              &vdi::uikit::utils::style::PaletteProvider::PaletteChanged);
    EXPECT_FALSE(paletteSwitch.IsDark());
    paletteSwitch.SetDark(true);
    EXPECT_TRUE(paletteSwitch.IsDark());
    EXPECT_EQ(paletteSwitch.Provider()->Palette()->Id(), PaletteId::Dark);
    paletteSwitch.SetDark(true);
    EXPECT_EQ(darkChanged.count(), 1);
    EXPECT_EQ(paletteChanged.count(), 1);
}

TEST_F(ControlRendering, GalleryWindowShowsEverySpecimenAndFollowsTheSwitch) {
    auto paletteSwitch = std::make_shared<PaletteSwitch>(PaletteId::Dark);
    QQmlApplicationEngine engine;
    engine.rootContext()->setContextProperty("paletteProvider", paletteSwitch->Provider());
    engine.rootContext()->setContextProperty("paletteSwitch", paletteSwitch.get());
    engine.rootContext()->setContextProperty("specimenNames", ControlRenderer::SpecimenNames());
    engine.load(QUrl("qrc:/ui_kit_gallery/Gallery.qml"));
    ASSERT_EQ(engine.rootObjects().size(), 1);
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().front());
    ASSERT_NE(window, nullptr);

    QTest::qWait(300);
    QStringList loaded;
    std::vector<QQuickItem*> pending = {window->contentItem()};
    while (!pending.empty()) {
        QQuickItem* item = pending.back();
        pending.pop_back();
        const QUrl source = item->property("source").toUrl();
        if (item->inherits("QQuickLoader") && source.path().startsWith("/ui_kit_gallery/specimens/")
            && item->property("status").toInt() == 1)
            loaded.append(source.fileName());
        const auto children = item->childItems();
        pending.insert(pending.end(), children.begin(), children.end());
    }
    EXPECT_EQ(loaded.size(), ControlRenderer::SpecimenNames().size()) << loaded.join(",").toStdString();

    EXPECT_EQ(window->color(), QColor("#141414"));
    paletteSwitch->SetDark(false);
    EXPECT_EQ(window->color(), QColor("#F7F8FA"));
}

TEST(ImageComparison, CountsOnlyDifferencesBeyondTheTolerance) {
    QImage reference(4, 3, QImage::Format_ARGB32);
    reference.fill(QColor(10, 20, 30));
    QImage actual = reference;
    EXPECT_EQ(CompareImages(actual, reference, 0).differingPixels, 0);

    actual.setPixel(1, 1, qRgb(10 + 5, 20, 30));
    auto within = CompareImages(actual, reference, 5);
    EXPECT_EQ(within.differingPixels, 0);
    EXPECT_EQ(within.maxChannelDelta, 5);

    actual.setPixel(2, 2, qRgba(10, 20, 30, 100));
    auto beyond = CompareImages(actual, reference, 5);
    EXPECT_EQ(beyond.differingPixels, 1);
    EXPECT_EQ(beyond.maxChannelDelta, 155);
    EXPECT_EQ(QColor(beyond.map.pixel(2, 2)), QColor(Qt::red));
    EXPECT_NE(QColor(beyond.map.pixel(0, 0)), QColor(Qt::red));
}

TEST(ImageComparison, DifferentSizesNeverMatch) {
    const QImage a(4, 3, QImage::Format_ARGB32);
    const QImage b(3, 4, QImage::Format_ARGB32);
    const auto difference = CompareImages(a, b, 255);
    EXPECT_FALSE(difference.sameSize);
    EXPECT_TRUE(difference.map.isNull());
}

}  // namespace
