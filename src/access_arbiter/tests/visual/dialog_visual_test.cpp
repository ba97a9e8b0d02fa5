#include "dialog_snapshot.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

using access_arbiter::preview::RenderDialog;
using access_arbiter::preview::SnapshotRequest;

// Share of pixels of which one channel is off by more than 48 (anti-aliasing and font hinting of
// another machine stay below that); 1 when the sizes differ.
double DifferingShare(const QImage& actual, const QImage& expected) {
    if (actual.size() != expected.size()) {
        return 1.0;
    }
    qint64 differing = 0;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb a = actual.pixel(x, y);
            const QRgb e = expected.pixel(x, y);
            differing += std::max({std::abs(qRed(a) - qRed(e)), std::abs(qGreen(a) - qGreen(e)),
                                   std::abs(qBlue(a) - qBlue(e)), std::abs(qAlpha(a) - qAlpha(e))}) > 48;
        }
    }
    return static_cast<double>(differing) / (static_cast<double>(actual.width()) * actual.height());
}

class DialogVisualTest : public ::testing::TestWithParam<const char*> {
protected:
    int m_argc = 0;
    QGuiApplication m_app{m_argc, nullptr};
};

TEST_P(DialogVisualTest, RenderingMatchesTheReference) {
    const std::string locale = GetParam();
    QString error;
    const QImage actual = RenderDialog(SnapshotRequest{locale}, error);
    ASSERT_FALSE(actual.isNull()) << error.toStdString();
    EXPECT_EQ(actual.size(), QSize(320, 156));

    const QString name = QStringLiteral("dialog-%1.png").arg(QString::fromStdString(locale));
    const QImage expected(QStringLiteral(HL_SOURCE_DIR "/src/access_arbiter/tests/visual/reference/") + name);
    const double share =
        expected.isNull() ? 1.0 : DifferingShare(actual, expected.convertToFormat(QImage::Format_ARGB32));
    if (share > 0.005) {  // at most half a percent of the pixels may differ
        const QString keptDir = QStringLiteral(HL_BINARY_DIR "/visual-failures");
        QDir().mkpath(keptDir);
        actual.save(keptDir + QLatin1Char('/') + name, "PNG");
        ADD_FAILURE() << "rendering differs from reference " << name.toStdString() << " in " << share * 100
                      << "% of pixels; produced image kept as " << (keptDir + "/" + name).toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Locales, DialogVisualTest, ::testing::Values("en-US", "ru-RU"),
                         [](const auto& info) { return std::string(info.param).replace(2, 1, "_"); });

}  // namespace
