#pragma once

#include <ui_kit/style/i_palette.h>
#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>

#include <QObject>

#include <memory>

namespace vdi::uikit::utils::style {

// Holds the current palette and tells QML, through PaletteChanged, when it is replaced.
// QML reads it as the context property "paletteProvider": `paletteProvider.palette.<colour>`.
//
// Construction takes over the factory and the interactor, fetches the palette of the interactor's
// current id and registers itself as the interactor's callback; it throws hca::CheckFailedException
// if either pointer is empty ("PaletteFactory is nullptr", "PaletteIdInteractor is nullptr"), if no
// id is set, or if the factory has no palette for it ("Failed to create initial palette").
// The destructor unregisters the callback before anything else, so the interactor must not be
// calling back concurrently at that moment.
//
// A change of id switches the palette on the thread that set the id; the program does that on the
// main thread only. No QObject parent.
class PaletteProvider : public QObject {
    Q_OBJECT
    Q_PROPERTY(vdi::uikit::utils::style::IPalette* palette READ Palette NOTIFY PaletteChanged)

public:
    PaletteProvider(std::shared_ptr<IPaletteFactory> factory,
                    std::shared_ptr<IPaletteIdInteractor> interactor);
    ~PaletteProvider() override;

    // The current palette; valid only until the palette changes.
    IPalette* Palette() const;

signals:
    void PaletteChanged();

private:
    // Run by the interactor's callback. Never throws: a failure is logged and the old palette stays.
    void OnPaletteChanged();

    std::shared_ptr<IPaletteFactory> m_factory;
    std::shared_ptr<IPalette> m_palette;
    std::shared_ptr<IPaletteIdInteractor> m_interactor;
};

std::shared_ptr<PaletteProvider> CreatePaletteProvider(std::shared_ptr<IPaletteFactory> factory,
                                                       std::shared_ptr<IPaletteIdInteractor> interactor);

}  // namespace vdi::uikit::utils::style
