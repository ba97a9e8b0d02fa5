#include <common_utils_ui/translate/translation_installer.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <string>
#include <vector>

namespace {

using vdi::common_utils_ui::translate::TranslationInstaller;

constexpr std::int32_t kNotSupported = static_cast<std::int32_t>(0x80000042u);
constexpr std::int32_t kUnspecifiedError = static_cast<std::int32_t>(0x8000004Bu);

QString Tr(const char* source) {
    return QCoreApplication::translate("test", source);
}

class TranslationInstallerTest : public ::testing::Test {
protected:
    void SetUp() override { QLocale::setDefault(QLocale(QLocale::C)); }

    int m_argc = 0;
    QCoreApplication m_app{m_argc, nullptr};
    hos::logger::LogCaptureForTesting m_capture;
    std::unique_ptr<TranslationInstaller> m_installer =
        std::make_unique<TranslationInstaller>(HL_TEST_CATALOGUES_DIR);
};

TEST_F(TranslationInstallerTest, RecognisedNamesGiveTheirLocaleOthersRussianWithAWarningEach) {
    for (const char* name : {"en-US", "ru-RU", "es-MX", "pt-BR"}) {
        const auto info = m_installer->GetLocale(name);
        EXPECT_EQ(info.fallback, 0) << name;
        EXPECT_EQ(info.locale.name().replace('_', '-').toStdString(), name);
    }
    EXPECT_EQ(m_capture.Count(hos::logger::LogLevel::Warning), 0U);
    const std::vector<std::string> names = {"en-us", "en_US", "fr-FR", "", "ru-RU "};
    for (const auto& name : names) {
        const auto info = m_installer->GetLocale(name);
        EXPECT_EQ(info.fallback, 1) << name;
        EXPECT_EQ(info.locale.name(), QStringLiteral("ru_RU")) << name;
    }
    EXPECT_EQ(m_capture.Count(hos::logger::LogLevel::Warning), names.size());
    EXPECT_TRUE(m_capture.Contains("Unable to determine locale <fr-FR>. Default is <ru_RU>"));
}

TEST_F(TranslationInstallerTest, InstallSetsTheDefaultLocaleAndUsesTheLanguageCatalogue) {
    EXPECT_EQ(m_installer->Install("x", "es-MX"), 0);
    EXPECT_EQ(Tr("hello"), QStringLiteral("hola"));
    EXPECT_EQ(QLocale().name(), QStringLiteral("es_MX"));
    EXPECT_EQ(m_installer->Install("a", "de-DE"), 0) << "an unknown locale installs the default language";
    EXPECT_EQ(Tr("hello"), QStringLiteral("privet-a"));
}

TEST_F(TranslationInstallerTest, EmptyResourceNameIsRefusedAfterTheLocaleIsSetAnEmptyListBefore) {
    EXPECT_EQ(m_installer->Install(std::vector<std::string>{}, "ru-RU"), kNotSupported);
    EXPECT_TRUE(m_capture.Contains("Resources vector is empty!"));
    EXPECT_EQ(QLocale().name(), QStringLiteral("C"));
    EXPECT_EQ(m_installer->Install("", "pt-BR"), kNotSupported);
    EXPECT_TRUE(m_capture.Contains("Resource name is empty!"));
    EXPECT_EQ(QLocale().name(), QStringLiteral("pt_BR"));
}

TEST_F(TranslationInstallerTest, ListStopsAtMissingCatalogueKeepsEarlierOnesAndDestructionRemovesThem) {
    const std::vector<std::string> resources = {"a", "bad", "c"};
    EXPECT_EQ(m_installer->Install(resources, "ru-RU"), kUnspecifiedError);
    EXPECT_EQ(Tr("hello"), QStringLiteral("privet-a"));
    EXPECT_EQ(Tr("hello-c"), QStringLiteral("hello-c"));
    EXPECT_TRUE(m_capture.Contains("Translation file <bad> for <ru_RU> language wasn't loaded"));
    EXPECT_EQ(m_installer->Install(std::vector<std::string>{"c"}, "ru-RU"), 0);
    EXPECT_EQ(Tr("hello-c"), QStringLiteral("privet-c"));
    m_installer.reset();
    EXPECT_EQ(Tr("hello"), QStringLiteral("hello"));
    EXPECT_EQ(Tr("hello-c"), QStringLiteral("hello-c"));
}

}  // namespace
