#include "dialog_snapshot.h"

#include "access_arbiter.h"
#include "business/interactors/user_decision_interactor.h"
#include "ui/window_factory/window_factory.h"
#include <common_utils_ui/translate/i_translation_installer.h>
#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>
#include <ui_kit/style/palette_provider.h>

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickWindow>

namespace access_arbiter::preview {
namespace {

namespace style = vdi::uikit::utils::style;

std::shared_ptr<style::PaletteProvider> MakeProvider(PaletteChoice choice) {
    if (choice == PaletteChoice::None) {
        return nullptr;
    }
    auto interactor = style::CreatePaletteIdInteractor();
    interactor->SetPaletteId(choice == PaletteChoice::Light ? style::PaletteId::Light
                                                            : style::PaletteId::Dark);
    return style::CreatePaletteProvider(style::CreatePaletteFactory(), interactor);
}

}  // namespace

QImage RenderDialog(const SnapshotRequest& request, QString& error) {
    AccessArbiter::SetApplicationOrganizationInfo();
    auto installer = vdi::common_utils_ui::translate::CreateTranslationInstaller();
    const auto name = QCoreApplication::applicationName().toStdString();
    if (installer->Install(name, request.locale) < 0) {
        error = QStringLiteral("no catalogue for the locale");
        return {};
    }
    const auto provider = MakeProvider(request.palette);

    QQmlApplicationEngine engine;
    engine.rootContext()->setContextProperty(QStringLiteral("paletteProvider"), provider.get());
    auto interactor = std::make_shared<interactors::UserDecisionInteractor>();
    ui::WindowFactory factory(&engine, interactor);
    auto window = factory.CreateWindow();
    auto* quickWindow =
        engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(engine.rootObjects().first());
    if (window == nullptr || quickWindow == nullptr) {
        error = QStringLiteral("the dialog document did not load");
        return {};
    }

    window->Show();
    const QDeadlineTimer deadline(5000);
    while (!quickWindow->isExposed() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    QImage image = quickWindow->grabWindow();
    if (image.isNull()) {
        error = QStringLiteral("the window could not be grabbed");
    }
    // The view dies with the window; it must go before the engine, as in the program.
    window.reset();
    return image.convertToFormat(QImage::Format_ARGB32);
}

}  // namespace access_arbiter::preview
