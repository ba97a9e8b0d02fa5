// The application object against a settings service in a process of its own, registered under the
// non-persistent service's name: what the language setting holds decides the catalogue installed,
// and every step that can fail stops the start with its own text.
#include "access_arbiter.h"
#include <diagnostics/hos_logger.h>
#include <diagnostics/log_capture_for_testing.h>
#include <diagnostics/process_exception.h>
#include <platform/platform.h>
#include <settings_manager/creators.h>
#include <settings_manager/setting_paths.h>

#include "support/peer_process.h"
#include "support/scoped_runtime_directory.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>

#include <memory>
#include <optional>
#include <string>

namespace {

using access_arbiter::AccessArbiter;
using hos::platform::testing::PeerProcess;
using settings_manager::Setting;
namespace translate = vdi::common_utils_ui::translate;

constexpr const char* kService = "hl.settings_manager.MSmgr";

// How many lines of the log hold text.
std::size_t Lines(const hos::logger::LogCaptureForTesting& log, const std::string& text) {
    std::size_t count = 0;
    for (const auto& record : log.Records()) {
        count += record.message.find(text) != std::string::npos;
    }
    return count;
}

QString Title() {
    return QCoreApplication::translate("access_arbiter_view", "$Title$");
}

std::unique_ptr<translate::ITranslationInstaller> EmbeddedCatalogues() {
    return translate::CreateTranslationInstaller();
}

// The text of what the constructor threw; empty when it didn't throw.
std::string ConstructionError(const AccessArbiter::SettingsManagerCreator& creator,
                              const AccessArbiter::TranslationInstallerCreator& installer) {
    try {
        AccessArbiter application(creator, installer);
        return {};
    } catch (...) {
        return fdn::utils::ProcessException().second;
    }
}

class ApplicationSettings : public testing::Test {
protected:
    void SetUp() override {
        m_server = PeerProcess::Start({HL_SETTINGSD, kService});
        ASSERT_NE(m_server, nullptr) << "hl-settingsd didn't come up";
        // Written as a person would, through a connection of the test's own. It lives through the
        // test, so the callback thread the proxies of one service share outlives each object made.
        ASSERT_EQ(vdi::common_utils::settings::CreateSettingsManagerNonPersistent(m_manager), 0);
        ASSERT_EQ(m_manager->GetSettingsSetter(m_setter), 0);
        ASSERT_EQ(m_manager->GetSettingsDeleter(m_deleter), 0);
        // Each case starts with the language absent, unlike the service's shipped defaults.
        m_deleter->DeleteSetting(settings_manager::paths::kLocaleLanguage);
    }

    void SetLanguage(const Setting& value) {
        ASSERT_EQ(m_setter->SetSetting(settings_manager::paths::kLocaleLanguage, value), 0);
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    std::unique_ptr<PeerProcess> m_server;
    std::shared_ptr<settings_manager::ISettingsManager> m_manager;
    std::shared_ptr<settings_manager::ISettingsSetter> m_setter;
    std::shared_ptr<settings_manager::ISettingsDeleter> m_deleter;
    int m_argc = 1;
    char m_name[16] = "app_test";
    char* m_argv[2] = {m_name, nullptr};
    QGuiApplication m_app{m_argc, m_argv};
};

TEST_F(ApplicationSettings, TheLanguageSettingChoosesTheCatalogueAndAnythingElseTheDefaultOne) {
    const struct {
        const char* name;
        std::optional<Setting> value;  // none: the setting is absent
        const char* title;
        const char* read;  // the settings access's one warning, or nullptr
        const char* installed;
    } cases[] = {
        {"en-US", Setting(std::string("en-US")), "Connection request", nullptr, "<en_US>"},
        {"ru-RU", Setting(std::string("ru-RU")), "Запрос на подключение", nullptr, "<ru_RU>"},
        // The Portuguese catalogue's texts are English.
        {"pt-BR", Setting(std::string("pt-BR")), "Connection request", nullptr, "<pt_BR>"},
        {"absent", std::nullopt, "Запрос на подключение",
         "SMgr GetSettingValue: can not get 'locale/language/', result = ", "<ru_RU>"},
        {"a number", Setting(std::int64_t{7}), "Запрос на подключение",
         "SMgr GetSettingValue: 'locale/language/' wrong type, index = 7", "<ru_RU>"},
        {"unknown", Setting(std::string("fr-FR")), "Запрос на подключение", nullptr, "<ru_RU>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.value) {
            ASSERT_NO_FATAL_FAILURE(SetLanguage(*c.value));
        }
        hos::logger::LogCaptureForTesting log;
        {
            AccessArbiter application(vdi::common_utils::settings::CreateSettingsManagerNonPersistent,
                                      EmbeddedCatalogues);
            EXPECT_EQ(Title().toStdString(), c.title);
            EXPECT_EQ(QCoreApplication::applicationName().toStdString(), "access_arbiter");
            EXPECT_NE(application.GetPaletteProvider(), nullptr);
            EXPECT_EQ(Lines(log, "SMgr GetSettingValue"), c.read ? 1U : 0U);
            EXPECT_TRUE(c.read == nullptr || log.Contains(c.read));
            // A value that isn't a known locale name leaves the installer its default.
            const bool known = c.value && c.read == nullptr && std::string(c.name) != "unknown";
            EXPECT_EQ(Lines(log, "Unable to determine locale <"), known ? 0U : 1U);
            EXPECT_EQ(Lines(log, std::string("Installing the ") + c.installed +
                                     " language translator for the resource <access_arbiter> completed"),
                      1U);
            EXPECT_TRUE(log.Contains("Connecting to hl.settings_manager.MSmgr settings manager"));
        }
        EXPECT_EQ(Title().toStdString(), "$Title$") << "the translator goes with the object";
        // The next case starts with the setting absent again.
        m_deleter->DeleteSetting(settings_manager::paths::kLocaleLanguage);
    }
}

TEST_F(ApplicationSettings, ACatalogueThatCannotBeInstalledStopsTheStart) {
    ASSERT_NO_FATAL_FAILURE(SetLanguage(Setting(std::string("en-US"))));
    hos::logger::LogCaptureForTesting log;
    const std::string error =
        ConstructionError(vdi::common_utils::settings::CreateSettingsManagerNonPersistent,
                          [] { return translate::CreateTranslationInstaller("/nonexistent"); });
    EXPECT_NE(error.find("Failed translator installation for locale"), std::string::npos) << error;
    EXPECT_TRUE(log.Contains("Translation file <access_arbiter> for <en_US> language wasn't loaded"));

    // An installer that can't be made stops the start with its own text.
    EXPECT_NE(ConstructionError(vdi::common_utils::settings::CreateSettingsManagerNonPersistent,
                                [] { return std::unique_ptr<translate::ITranslationInstaller>(); })
                  .find("translation installer is null"),
              std::string::npos);
}

// A manager that hands out the given getter with the given result.
class GetterOnly : public settings_manager::ISettingsManager {
public:
    GetterOnly(std::int32_t result, std::shared_ptr<settings_manager::ISettingsGetter> getter)
        : m_result(result), m_getter(std::move(getter)) {}
    std::int32_t GetSettingsCreator(std::shared_ptr<settings_manager::ISettingsCreator>&) override {
        return -1;
    }
    std::int32_t GetSettingsGetter(std::shared_ptr<settings_manager::ISettingsGetter>& getter) override {
        getter = m_getter;
        return m_result;
    }
    std::int32_t GetSettingsValueSetter(std::shared_ptr<settings_manager::ISettingsValueSetter>&) override {
        return -1;
    }
    std::int32_t GetSettingsSetter(std::shared_ptr<settings_manager::ISettingsSetter>&) override {
        return -1;
    }
    std::int32_t GetSettingsDeleter(std::shared_ptr<settings_manager::ISettingsDeleter>&) override {
        return -1;
    }
    std::int32_t GetSettingsUpdateSubscriber(
        std::shared_ptr<settings_manager::ISettingsUpdateSubscriber>&) override {
        return -1;
    }

private:
    std::int32_t m_result;
    std::shared_ptr<settings_manager::ISettingsGetter> m_getter;
};

TEST(ApplicationStart, EachFailedStepStopsTheStartWithItsText) {
    // Without a Qt application nothing else is tried, the settings connection included.
    bool connected = false;
    const auto spy = [&connected](std::shared_ptr<settings_manager::ISettingsManager>&) {
        connected = true;
        return 0;
    };
    EXPECT_NE(ConstructionError(spy, EmbeddedCatalogues)
                  .find("QCoreApplication must be created before AccessArbiter"),
              std::string::npos);
    EXPECT_FALSE(connected);

    hos::platform::testing::ScopedRuntimeDirectory directory;
    int argc = 1;
    char name[] = "app_test";
    char* argv[] = {name, nullptr};
    QGuiApplication app(argc, argv);

    // A server of the service's name that doesn't offer NkISM: the real creator fails at once.
    unsigned int registration = 0;
    const unsigned int server = ServiceLocatorRegister(kService, nullptr, 0, &registration);
    ASSERT_NE(server, NK_INVALID_HANDLE);
    hos::logger::LogCaptureForTesting log;
    EXPECT_NE(
        ConstructionError(vdi::common_utils::settings::CreateSettingsManagerNonPersistent, EmbeddedCatalogues)
            .find("Failed to create non persistent settings manager"),
        std::string::npos);
    EXPECT_TRUE(log.Contains("Could not create settings manager proxy: "));
    KnHandleClose(server);
    ServiceLocatorUnregister(registration);

    const auto gives = [](std::shared_ptr<settings_manager::ISettingsManager> manager) {
        return [manager](std::shared_ptr<settings_manager::ISettingsManager>& out) {
            out = manager;
            return 0;
        };
    };
    const struct {
        const char* step;
        AccessArbiter::SettingsManagerCreator creator;
        AccessArbiter::TranslationInstallerCreator installer;
        const char* text;
    } cases[] = {
        {"manager null", gives(nullptr), EmbeddedCatalogues, "non persistent settings manager is null"},
        {"getter refused", gives(std::make_shared<GetterOnly>(-5, nullptr)), EmbeddedCatalogues,
         "Failed to create non persistent settings getter"},
        {"getter null", gives(std::make_shared<GetterOnly>(0, nullptr)), EmbeddedCatalogues,
         "non persistent settings getter is null"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.step);
        EXPECT_NE(ConstructionError(c.creator, c.installer).find(c.text), std::string::npos);
    }
}

// The program's logger: its tag, the information level, and Qt's own messages in the same log.
TEST(ApplicationStart, TheLoggerHasTheProgramsTagAndLevelAndTakesQtsOwnMessages) {
    AccessArbiter::SetupLogger();
    auto& root = hos::logger::HOSLogger::RootLogger();
    EXPECT_EQ(root.Tag(), "ACCESSARB");
    EXPECT_TRUE(root.IsEnabled(hos::logger::LogLevel::Info));
    EXPECT_FALSE(root.IsEnabled(hos::logger::LogLevel::Debug));
    hos::logger::LogCaptureForTesting log;
    qWarning("a warning of Qt's own");
    EXPECT_TRUE(log.Contains("a warning of Qt's own"));
    qInstallMessageHandler(nullptr);
}

}  // namespace
