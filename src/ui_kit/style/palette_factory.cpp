#include "style/palette_factory.h"

#include "style/dark_palette.h"
#include "style/light_palette.h"

#include <diagnostics/log.h>

namespace vdi::uikit::utils::style {

PaletteFactory::PaletteFactory() = default;

PaletteFactory::~PaletteFactory() = default;

std::shared_ptr<IPalette> PaletteFactory::GetPalette(PaletteId id) const {
    auto [entry, inserted] = m_palettes.try_emplace(id);
    if (entry->second) {
        return entry->second;
    }
    entry->second = CreatePaletteById(id);
    if (!entry->second) {
        m_palettes.erase(entry);
        return nullptr;
    }
    return entry->second;
}

std::shared_ptr<IPalette> PaletteFactory::CreatePaletteById(PaletteId id) {
    switch (id) {
        case PaletteId::Light:
            return std::make_shared<LightPalette>();
        case PaletteId::Dark:
            return std::make_shared<DarkPalette>();
    }
    HL_LOG(hos::logger::LogLevel::Warning, "Palette for id: {} not found", static_cast<unsigned>(id));
    return nullptr;
}

std::shared_ptr<IPaletteFactory> CreatePaletteFactory() {
    return std::make_shared<PaletteFactory>();
}

}  // namespace vdi::uikit::utils::style
