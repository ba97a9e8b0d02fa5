#include <common_utils_ui/fonts/default_font.h>

#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QFontInfo>

#include <cstdlib>

namespace {

// The hosted platform's session serves the UI family through this fontconfig file.
constexpr const char* kSessionFontConfig = HL_SOURCE_DIR "/tools/hosted-session/fontconfig/fonts.conf";

TEST(DefaultFont, ApplicationFontBecomesTheUiFamily) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    vdi::common_utils_ui::fonts::SetDefaultHosApplicationFont(app);
    const QFont after = QGuiApplication::font();
    EXPECT_EQ(after.family(), QStringLiteral("Halcyra Sans Text"));
    EXPECT_EQ(after.weight(), QFont::Normal);
    EXPECT_FALSE(after.italic());
}

TEST(DefaultFont, SessionFontConfigurationMakesTheFamilyKnownWithCyrillic) {
    ::setenv("FONTCONFIG_FILE", kSessionFontConfig, 1);
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    ASSERT_TRUE(QFontDatabase::hasFamily(QStringLiteral("Halcyra Sans Text")));
    vdi::common_utils_ui::fonts::SetDefaultHosApplicationFont(app);
    const QFontInfo info(QGuiApplication::font());
    EXPECT_EQ(info.family(), QStringLiteral("DejaVu Sans"));
    const auto systems = QFontDatabase::writingSystems(info.family());
    EXPECT_TRUE(systems.contains(QFontDatabase::Latin));
    EXPECT_TRUE(systems.contains(QFontDatabase::Cyrillic));
}

}  // namespace
