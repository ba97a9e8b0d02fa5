#include "dialog_snapshot.h"
#include "tests/support/differing_share.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

using access_arbiter::preview::RenderDialog;
using access_arbiter::preview::SnapshotRequest;
using access_arbiter::testing::DifferingShare;

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
    const double share = expected.isNull() ? 1.0 : DifferingShare(actual, expected, true);
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
