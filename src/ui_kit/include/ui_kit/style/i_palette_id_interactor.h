#pragma once

#include <ui_kit/style/palette_id.h>

#include <functional>
#include <memory>

namespace vdi::uikit::utils::style {

// Holds the current palette id and calls back whenever it is set.
//
// One callback slot, never a list. SetPaletteId may come from any thread; the callback then runs on
// that thread, outside the interactor's lock, so it may register or unregister itself. The callback
// runs on every SetPaletteId, even with an unchanged id: deciding whether anything changed is the
// listener's business.
class IPaletteIdInteractor {
public:
    using Callback = std::function<void()>;

    virtual ~IPaletteIdInteractor() = default;

    // The current id; throws hca::CheckFailedException "Palette id not set" before the first set.
    virtual PaletteId GetPaletteId() const = 0;
    virtual void SetPaletteId(PaletteId id) = 0;
    // Throws hca::CheckFailedException "callback was already registered!" if the slot is taken,
    // and keeps the callback already there.
    virtual void RegisterCallback(Callback callback) = 0;
    // Empties the slot; does nothing when it is empty.
    virtual void UnregisterCallback() = 0;
};

std::shared_ptr<IPaletteIdInteractor> CreatePaletteIdInteractor();

}  // namespace vdi::uikit::utils::style
