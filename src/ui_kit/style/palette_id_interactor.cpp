#include "style/palette_id_interactor.h"

#include <diagnostics/check.h>
#include <diagnostics/log.h>

#include <mutex>
#include <utility>

namespace vdi::uikit::utils::style {

PaletteIdInteractor::PaletteIdInteractor() = default;

PaletteIdInteractor::~PaletteIdInteractor() = default;

PaletteId PaletteIdInteractor::GetPaletteId() const {
    const auto id = m_paletteId.load();
    HCA_CHECK(id != kNoId) << "Palette id not set";
    return static_cast<PaletteId>(id);
}

void PaletteIdInteractor::SetPaletteId(PaletteId id) {
    m_paletteId.store(static_cast<std::uint32_t>(id));

    Callback callback;
    {
        std::shared_lock lock(m_callbackMutex);
        callback = m_callback;
    }
    // Run outside the lock: the callback may register or unregister itself.
    if (!callback) {
        HL_LOG(hos::logger::LogLevel::Debug, "No callback, set parameter only");
        return;
    }
    callback();
}

void PaletteIdInteractor::RegisterCallback(Callback callback) {
    std::unique_lock lock(m_callbackMutex);
    HCA_CHECK(!m_callback) << "callback was already registered!";
    m_callback = std::move(callback);
}

void PaletteIdInteractor::UnregisterCallback() {
    std::unique_lock lock(m_callbackMutex);
    m_callback = nullptr;
}

std::shared_ptr<IPaletteIdInteractor> CreatePaletteIdInteractor() {
    return std::make_shared<PaletteIdInteractor>();
}

}  // namespace vdi::uikit::utils::style
