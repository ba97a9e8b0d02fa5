// Visual tests: a few controls rendered by the gallery's renderer and compared with the reference
// images in src/ui_kit/tests/visual/reference. A failed comparison keeps the rendered image and a
// map of the differences (red where they differ) in <build>/visual-output for inspection. After an
// intended change of look, refresh the references with
//   ui-kit-gallery --render src/ui_kit/tests/visual/reference --only <Specimen,...>
#include <control_renderer.h>
#include <palette_switch.h>

#include <QDir>
#include <QGuiApplication>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

using vdi::uikit::gallery::ControlRenderer;
using vdi::uikit::gallery::PaletteName;
using vdi::uikit::gallery::PaletteSwitch;
using vdi::uikit::utils::style::PaletteId;

// Anti-aliasing may move a channel a little between library versions; layout changes do not.
constexpr int kChannelTolerance = 24;
constexpr double kMaxDifferingShare = 0.002;

struct Difference {
    qsizetype pixels = 0;  // pixels with some channel off by more than kChannelTolerance
    QImage map;
};

// Both images must have the same size.
Difference Compare(const QImage& actualImage, const QImage& expectedImage) {
    const QImage actual = actualImage.convertToFormat(QImage::Format_ARGB32);
    const QImage expected = expectedImage.convertToFormat(QImage::Format_ARGB32);
    Difference result{0, QImage(expected.size(), QImage::Format_ARGB32)};
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const QRgb a = actual.pixel(x, y);
            const QRgb e = expected.pixel(x, y);
            const int delta = std::max({std::abs(qRed(a) - qRed(e)), std::abs(qGreen(a) - qGreen(e)),
                                        std::abs(qBlue(a) - qBlue(e)), std::abs(qAlpha(a) - qAlpha(e))});
            const bool differs = delta > kChannelTolerance;
            result.pixels += differs ? 1 : 0;
            result.map.setPixel(x, y,
                                differs ? qRgb(255, 0, 0) : qRgb(qRed(e) / 4, qGreen(e) / 4, qBlue(e) / 4));
        }
    }
    return result;
}

struct VisualCase {
    std::string specimen;
    PaletteId palette;
};

std::string CaseName(const VisualCase& c) {
    return c.specimen + "_" + PaletteName(c.palette);
}

class ControlVisual : public ::testing::TestWithParam<VisualCase> {
protected:
    static void SetUpTestSuite() { vdi::uikit::gallery::PrepareOffscreenRendering(); }

    void SetUp() override {
        if (QCoreApplication::instance() == nullptr)
            m_app = std::make_unique<QGuiApplication>(m_argc, m_argv);
        m_renderer = std::make_unique<ControlRenderer>(std::make_shared<PaletteSwitch>(PaletteId::Dark));
    }

    int m_argc = 1;
    char m_programName[24] = "ui_kit_visual_tests";
    char* m_argv[2] = {m_programName, nullptr};
    std::unique_ptr<QGuiApplication> m_app;
    std::unique_ptr<ControlRenderer> m_renderer;  // goes before the application
};

TEST_P(ControlVisual, RenderingMatchesTheReferenceImage) {
    const QString name = QString::fromStdString(CaseName(GetParam()));
    QString error;
    const QImage actual =
        m_renderer->Render(QString::fromStdString(GetParam().specimen), GetParam().palette, &error);
    ASSERT_FALSE(actual.isNull()) << error.toStdString();

    const QString outputDir = QStringLiteral(HL_BINARY_DIR "/visual-output/");
    const QString actualPath = outputDir + name + ".png";
    const QString mapPath = outputDir + name + "_diff.png";
    QDir().mkpath(outputDir);
    QFile::remove(actualPath);
    QFile::remove(mapPath);

    const QImage expected(QStringLiteral(HL_SOURCE_DIR "/src/ui_kit/tests/visual/reference/") + name +
                          ".png");
    if (expected.size() != actual.size()) {
        actual.save(actualPath);
        FAIL() << "rendered " << actual.width() << "x" << actual.height() << ", reference "
               << expected.width() << "x" << expected.height() << " (none when 0x0); kept "
               << actualPath.toStdString();
    }
    const Difference difference = Compare(actual, expected);
    const auto allowed = static_cast<qsizetype>(expected.width() * expected.height() * kMaxDifferingShare);
    if (difference.pixels > allowed) {
        actual.save(actualPath);
        difference.map.save(mapPath);
    }
    EXPECT_LE(difference.pixels, allowed)
        << "kept " << actualPath.toStdString() << " and " << mapPath.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Specimens, ControlVisual, ::testing::ValuesIn([] {
        std::vector<VisualCase> cases;
        for (const char* specimen : {"PushButton", "TextLabel", "CloseButton", "RoundedRect"}) {
            for (const auto palette : {PaletteId::Dark, PaletteId::Light})
                cases.push_back({specimen, palette});
        }
        return cases;
    }()),
    [](const auto& info) { return CaseName(info.param); });

class ControlRendering : public ControlVisual {};

TEST_F(ControlRendering, EverySpecimenRendersInBothPalettesAndAnUnknownOneGivesAnError) {
    const QStringList names = ControlRenderer::SpecimenNames();
    ASSERT_GE(names.size(), 15);
    for (const QString& name : names) {
        for (const auto palette : {PaletteId::Light, PaletteId::Dark}) {
            QString error;
            EXPECT_FALSE(m_renderer->Render(name, palette, &error).isNull())
                << name.toStdString() << ": " << error.toStdString();
        }
    }
    QString error;
    EXPECT_TRUE(m_renderer->Render("NoSuchControl", PaletteId::Dark, &error).isNull());
    EXPECT_NE(error.indexOf("NoSuchControl"), -1) << error.toStdString();
}

}  // namespace
