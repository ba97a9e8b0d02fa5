#pragma once

#include <ui_kit/style/palette_id.h>
#include <ui_kit/style/palette_provider.h>

#include <QObject>

#include <memory>

namespace vdi::uikit::gallery {

// Owns a palette provider for the gallery and lets QML or C++ flip between light and dark at run
// time, the way an application would: by setting the id on the interactor. Main thread only.
class PaletteSwitch : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool dark READ IsDark WRITE SetDark NOTIFY DarkChanged)

public:
    explicit PaletteSwitch(utils::style::PaletteId initial);

    bool IsDark() const;
    void SetDark(bool dark);
    void SetPaletteId(utils::style::PaletteId id);
    utils::style::PaletteId CurrentId() const;

    // The provider to install as the context property "paletteProvider"; owned by this object.
    utils::style::PaletteProvider* Provider() const;

signals:
    void DarkChanged();

private:
    std::shared_ptr<utils::style::IPaletteIdInteractor> m_interactor;
    std::shared_ptr<utils::style::PaletteProvider> m_provider;
};

// "light" or "dark", as the renderer names its files.
const char* PaletteName(utils::style::PaletteId id);

}  // namespace vdi::uikit::gallery
