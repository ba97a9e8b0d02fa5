// Runner of the kit's Qt Quick tests. The palette runner installs a real PaletteProvider (dark at
// start) as "paletteProvider" and itself as "paletteSwitch", whose SetPaletteIdForTesting(id)
// changes the palette as an application would; the no-palette runner sets "paletteProvider" to
// null, so every control shows its fallback colours.
#include <ui_kit/style/palette_provider.h>

#include <QObject>
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#include <memory>

namespace style = vdi::uikit::utils::style;

class Setup : public QObject {
    Q_OBJECT

public:
    Q_INVOKABLE void SetPaletteIdForTesting(int id) {
        m_interactor->SetPaletteId(static_cast<style::PaletteId>(id));
    }

public slots:
    void qmlEngineAvailable(QQmlEngine* engine) {
#ifdef HL_UI_KIT_QML_TEST_NO_PALETTE
        engine->rootContext()->setContextProperty("paletteProvider", nullptr);
#else
        // Every test file gets an engine of its own, and a fresh provider with it.
        m_provider.reset();
        m_interactor = style::CreatePaletteIdInteractor();
        m_interactor->SetPaletteId(style::PaletteId::Dark);
        m_provider = style::CreatePaletteProvider(style::CreatePaletteFactory(), m_interactor);
        engine->rootContext()->setContextProperty("paletteProvider", m_provider.get());
        engine->rootContext()->setContextProperty("paletteSwitch", this);
#endif
    }

private:
    std::shared_ptr<style::IPaletteIdInteractor> m_interactor = style::CreatePaletteIdInteractor();
    std::shared_ptr<style::PaletteProvider> m_provider;
};

QUICK_TEST_MAIN_WITH_SETUP(ui_kit_qml, Setup)

#include "main.moc"
