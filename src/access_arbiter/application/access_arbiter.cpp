#include <access_arbiter/application/access_arbiter.h>

#include <access_arbiter/config/logger_config.h>
#include <diagnostics/check.h>
#include <diagnostics/hos_logger.h>
#include <diagnostics/qt_logger_support.h>
#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>

#include <QCoreApplication>

#include <string>

// The UI kit's resource trees; declared at global scope, as rcc defines them there.
int qInitResources_ui_kit_images();
int qInitResources_ui_kit_qml();

namespace access_arbiter {

AccessArbiter::AccessArbiter() {
    HCA_CHECK(QCoreApplication::instance() != nullptr)
        << "QCoreApplication must be created before AccessArbiter";
    SetApplicationOrganizationInfo();
    LoadTranslations();
    CreatePaletteProvider();
}

AccessArbiter::~AccessArbiter() {
    m_paletteProvider.reset();
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

void AccessArbiter::LoadTranslations() {
    const std::string locale;
    m_translationInstaller = vdi::common_utils_ui::translate::CreateTranslationInstaller();
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
