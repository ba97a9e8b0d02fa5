#include "palette_switch.h"

namespace vdi::uikit::gallery {

using utils::style::PaletteId;

PaletteSwitch::PaletteSwitch(PaletteId initial) : m_interactor(utils::style::CreatePaletteIdInteractor()) {
    m_interactor->SetPaletteId(initial);
    m_provider = utils::style::CreatePaletteProvider(utils::style::CreatePaletteFactory(), m_interactor);
}

bool PaletteSwitch::IsDark() const {
    return CurrentId() == PaletteId::Dark;
}

void PaletteSwitch::SetDark(bool dark) {
    SetPaletteId(dark ? PaletteId::Dark : PaletteId::Light);
}

void PaletteSwitch::SetPaletteId(PaletteId id) {
    const bool wasDark = IsDark();
    m_interactor->SetPaletteId(id);
    if (wasDark != IsDark()) emit DarkChanged();
}

PaletteId PaletteSwitch::CurrentId() const {
    return m_interactor->GetPaletteId();
}

utils::style::PaletteProvider* PaletteSwitch::Provider() const {
    return m_provider.get();
}

const char* PaletteName(PaletteId id) {
    return id == PaletteId::Light ? "light" : "dark";
}

}  // namespace vdi::uikit::gallery
