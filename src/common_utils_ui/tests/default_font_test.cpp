// The application font: the platform's UI family, with neither size nor weight set, so that both
// stay the toolkit's choice. The program only names the family; the platform's font database must
// know it, as the hosted session's fontconfig alias (DejaVu Sans) makes it.
#include <common_utils_ui/fonts/default_font.h>

#include <gtest/gtest.h>

#include <QFont>
#include <QFontInfo>
#include <QGuiApplication>

#include <stdlib.h>

namespace {

TEST(DefaultFont, NamesThePlatformsFamilyOnlyAndResolvesThroughTheSessionsAlias) {
    setenv("FONTCONFIG_FILE", HL_SOURCE_DIR "/tools/hosted-session/fontconfig/fonts.conf", 1);
    int argc = 1;
    char name[] = "default_font_test";
    char* argv[] = {name, nullptr};
    QGuiApplication app(argc, argv);

    vdi::common_utils_ui::fonts::SetDefaultHosApplicationFont(app);

    const QFont font = QGuiApplication::font();
    EXPECT_EQ(font.family().toStdString(), "Halcyra Sans Text");
    EXPECT_FALSE(font.italic());
    EXPECT_EQ(font.resolveMask() & (QFont::SizeResolved | QFont::WeightResolved), 0U)
        << "a size or a weight of its own";
    EXPECT_EQ(QFontInfo(font).family().toStdString(), "DejaVu Sans")
        << "the family is not known to the font database";
}

}  // namespace
