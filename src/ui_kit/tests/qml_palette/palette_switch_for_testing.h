#pragma once

#include <ui_kit/style/i_palette_id_interactor.h>

#include <QObject>

#include <memory>

namespace vdi::uikit::testing {

// Lets a QML test change the palette id the way an application would, through the interactor.
// Exposed to the tests as the context property "paletteSwitch". Main thread.
class PaletteSwitchForTesting : public QObject {
    Q_OBJECT

public:
    explicit PaletteSwitchForTesting(std::shared_ptr<utils::style::IPaletteIdInteractor> interactor)
        : m_interactor(std::move(interactor)) {}

    Q_INVOKABLE void setPaletteId(int id) {
        m_interactor->SetPaletteId(static_cast<utils::style::PaletteId>(id));
    }
    Q_INVOKABLE int paletteId() const { return static_cast<int>(m_interactor->GetPaletteId()); }

private:
    std::shared_ptr<utils::style::IPaletteIdInteractor> m_interactor;
};

}  // namespace vdi::uikit::testing
