#pragma once

#include <ui_kit/style/i_palette_factory.h>

#include <memory>
#include <unordered_map>

namespace vdi::uikit::utils::style {

// Builds LightPalette for id 1 and DarkPalette for id 2 on first request and keeps them for its
// lifetime. Unknown ids leave no entry behind. Main thread; no locking.
class PaletteFactory final : public IPaletteFactory {
public:
    PaletteFactory();
    ~PaletteFactory() override;

    std::shared_ptr<IPalette> GetPalette(PaletteId id) const override;

private:
    // A new palette for the id, or an empty pointer with a warning for an unknown id.
    static std::shared_ptr<IPalette> CreatePaletteById(PaletteId id);

    // The cache is filled lazily by the const GetPalette.
    mutable std::unordered_map<PaletteId, std::shared_ptr<IPalette>> m_palettes;
};

}  // namespace vdi::uikit::utils::style
