#include "access_arbiter.h"

#include "logger_config.h"
#include <diagnostics/check.h>
#include <diagnostics/hos_logger.h>
#include <diagnostics/qt_logger_support.h>
#include <settings_manager/creators.h>
#include <settings_manager/setting_paths.h>
#include <settings_manager/sm_utils.h>
#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>

#include <QCoreApplication>

#include <string>

// The UI kit's resource trees; declared at global scope, as rcc defines them there.
int qInitResources_ui_kit_images();
int qInitResources_ui_kit_qml();

namespace access_arbiter {

AccessArbiter::AccessArbiter()
    : AccessArbiter(vdi::common_utils::settings::CreateSettingsManagerNonPersistent,
                    [] { return vdi::common_utils_ui::translate::CreateTranslationInstaller(); }) {}

AccessArbiter::AccessArbiter(SettingsManagerCreator createSettingsManager,
                             TranslationInstallerCreator createTranslationInstaller) {
    HCA_CHECK(QCoreApplication::instance() != nullptr)
        << "QCoreApplication must be created before AccessArbiter";
    CreateNonPersistentSettingManager(createSettingsManager);
    // The catalogues are named after the application, so this comes before the translations.
    SetApplicationOrganizationInfo();
    LoadTranslations(createTranslationInstaller);
    CreatePaletteProvider();
}

AccessArbiter::~AccessArbiter() {
    m_paletteProvider.reset();
    m_settingsManager.reset();
    m_settingsGetter.reset();
    m_translationInstaller.reset();
}

std::shared_ptr<vdi::uikit::utils::style::PaletteProvider> AccessArbiter::GetPaletteProvider() const {
    return m_paletteProvider;
}

void AccessArbiter::SetupLogger() {
    hos::logger::HOSLogger::Setup("ACCESSARB", config::logger::impl::logLevel, nullptr);
    qInstallMessageHandler(QtLoggerSupport::MessageHandler);
}

void AccessArbiter::InitResources() {
    qInitResources_ui_kit_images();
    qInitResources_ui_kit_qml();
}

void AccessArbiter::SetApplicationOrganizationInfo() {
    QCoreApplication::setOrganizationName(QStringLiteral("Halcyra"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("halcyra.org"));
    QCoreApplication::setApplicationName(QStringLiteral("access_arbiter"));
}

void AccessArbiter::CreateNonPersistentSettingManager(const SettingsManagerCreator& createSettingsManager) {
    HCA_CHECK_RESULT(createSettingsManager(m_settingsManager))
        << "Failed to create non persistent settings manager";
    HCA_CHECK(m_settingsManager != nullptr) << "non persistent settings manager is null";
    HCA_CHECK_RESULT(m_settingsManager->GetSettingsGetter(m_settingsGetter))
        << "Failed to create non persistent settings getter";
    HCA_CHECK(m_settingsGetter != nullptr) << "non persistent settings getter is null";
}

void AccessArbiter::LoadTranslations(const TranslationInstallerCreator& createTranslationInstaller) {
    // An absent setting, or one of another type, gives the empty locale: the installer's default.
    const std::string locale = utils::sm::GetSettingValue<std::string, std::string>(
        *m_settingsGetter, settings_manager::paths::kLocaleLanguage, "");
    m_translationInstaller = createTranslationInstaller();
    HCA_CHECK(m_translationInstaller != nullptr) << "translation installer is null";
    const int result =
        m_translationInstaller->Install(QCoreApplication::applicationName().toUtf8().toStdString(), locale);
    HCA_CHECK_RESULT(result) << "Failed translator installation for locale";
}

void AccessArbiter::CreatePaletteProvider() {
    namespace style = vdi::uikit::utils::style;
    auto interactor = style::CreatePaletteIdInteractor();
    interactor->SetPaletteId(style::PaletteId::Dark);
    auto factory = style::CreatePaletteFactory();
    m_paletteProvider = style::CreatePaletteProvider(factory, interactor);
}

}  // namespace access_arbiter
