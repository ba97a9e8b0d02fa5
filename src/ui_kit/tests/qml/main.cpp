// Runner of the kit's Qt Quick tests. The palette runner installs a real PaletteProvider (dark at
// start) as "paletteProvider" and a switch, "paletteSwitch", whose SetPaletteIdForTesting(id)
// changes the palette as an application would; the no-palette runner sets "paletteProvider" to
// null, so every control shows its fallback colours.
#include <QObject>
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#ifndef HL_UI_KIT_QML_TEST_NO_PALETTE
#include <ui_kit/style/palette_provider.h>

#include <memory>
#endif

class Setup : public QObject {
    Q_OBJECT

public:
    Setup() = default;

#ifndef HL_UI_KIT_QML_TEST_NO_PALETTE
    Q_INVOKABLE void SetPaletteIdForTesting(int id) {
        m_interactor->SetPaletteId(static_cast<vdi::uikit::utils::style::PaletteId>(id));
    }
#endif

public slots:
    void qmlEngineAvailable(QQmlEngine* engine) {
#ifdef HL_UI_KIT_QML_TEST_NO_PALETTE
        engine->rootContext()->setContextProperty("paletteProvider", nullptr);
#else
        namespace style = vdi::uikit::utils::style;
        m_interactor = style::CreatePaletteIdInteractor();
        m_interactor->SetPaletteId(style::PaletteId::Dark);
        m_provider = style::CreatePaletteProvider(style::CreatePaletteFactory(), m_interactor);
        engine->rootContext()->setContextProperty("paletteProvider", m_provider.get());
        engine->rootContext()->setContextProperty("paletteSwitch", this);
#endif
    }

#ifndef HL_UI_KIT_QML_TEST_NO_PALETTE
private:
    std::shared_ptr<vdi::uikit::utils::style::IPaletteIdInteractor> m_interactor;
    std::shared_ptr<vdi::uikit::utils::style::PaletteProvider> m_provider;
#endif
};

QUICK_TEST_MAIN_WITH_SETUP(ui_kit_qml, Setup)

#include "main.moc"
