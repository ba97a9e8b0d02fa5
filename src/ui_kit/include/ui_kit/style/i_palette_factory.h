#pragma once

#include <ui_kit/style/i_palette.h>
#include <ui_kit/style/palette_id.h>

#include <memory>

namespace vdi::uikit::utils::style {

// Builds palettes by id and keeps each one for the factory's lifetime, so asking twice for one id
// gives the same object. Main thread; no locking.
class IPaletteFactory {
public:
    virtual ~IPaletteFactory() = default;

    // The palette for the id, or an empty pointer (with a warning in the log) for an unknown id.
    virtual std::shared_ptr<IPalette> GetPalette(PaletteId id) const = 0;
};

std::shared_ptr<IPaletteFactory> CreatePaletteFactory();

}  // namespace vdi::uikit::utils::style
