// Qt Quick Test runner for the palette as QML sees it: every tst_*.qml here gets the context
// properties "paletteProvider" (dark palette at start) and "paletteSwitch".

#include "palette_switch_for_testing.h"

#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>
#include <ui_kit/style/palette_provider.h>

#include <QObject>
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#include <memory>

namespace {

using namespace vdi::uikit::utils::style;

class PaletteTestSetup : public QObject {
    Q_OBJECT

public:
    PaletteTestSetup() : m_interactor(CreatePaletteIdInteractor()) {
        m_interactor->SetPaletteId(PaletteId::Dark);
        m_provider = CreatePaletteProvider(CreatePaletteFactory(), m_interactor);
        m_switch = std::make_unique<vdi::uikit::testing::PaletteSwitchForTesting>(m_interactor);
    }

public slots:
    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->rootContext()->setContextProperty("paletteProvider", m_provider.get());
        engine->rootContext()->setContextProperty("paletteSwitch", m_switch.get());
    }

private:
    std::shared_ptr<IPaletteIdInteractor> m_interactor;
    std::shared_ptr<PaletteProvider> m_provider;
    std::unique_ptr<vdi::uikit::testing::PaletteSwitchForTesting> m_switch;
};

}  // namespace

QUICK_TEST_MAIN_WITH_SETUP(ui_kit_palette, PaletteTestSetup)

#include "main.moc"
