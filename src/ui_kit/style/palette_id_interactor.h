#pragma once

#include <ui_kit/style/i_palette_id_interactor.h>

#include <atomic>
#include <cstdint>
#include <shared_mutex>

namespace vdi::uikit::utils::style {

// Stores the current palette id and runs the one registered callback on every SetPaletteId.
// The shared mutex guards only the callback, which is run from a copy outside the lock.
// Any thread.
class PaletteIdInteractor final : public IPaletteIdInteractor {
public:
    PaletteIdInteractor();
    ~PaletteIdInteractor() override;

    PaletteId GetPaletteId() const override;
    void SetPaletteId(PaletteId id) override;
    void RegisterCallback(Callback callback) override;
    void UnregisterCallback() override;

private:
    // Outside the 16-bit range of PaletteId, so every id, even 0, stays distinguishable from "unset".
    static constexpr std::uint32_t kNoId = 0xFFFFFFFFu;

    Callback m_callback;
    mutable std::shared_mutex m_callbackMutex;
    // The id is not guarded by the mutex. An atomic rather than a plain optional keeps concurrent
    // SetPaletteId calls free of a data race while still taking no lock.
    std::atomic<std::uint32_t> m_paletteId{kNoId};
};

}  // namespace vdi::uikit::utils::style
