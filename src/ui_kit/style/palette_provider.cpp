#include <ui_kit/style/palette_provider.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>

#include <QMetaType>

#include <utility>

namespace vdi::uikit::utils::style {

PaletteProvider::PaletteProvider(std::shared_ptr<IPaletteFactory> factory,
                                 std::shared_ptr<IPaletteIdInteractor> interactor)
    : m_factory(std::move(factory)), m_interactor(std::move(interactor)) {
    qRegisterMetaType<Gradient*>();
    qRegisterMetaType<IPalette*>();

    HCA_CHECK(m_factory != nullptr) << "PaletteFactory is nullptr";
    HCA_CHECK(m_interactor != nullptr) << "PaletteIdInteractor is nullptr";
    m_palette = m_factory->GetPalette(m_interactor->GetPaletteId());
    HCA_CHECK(m_palette != nullptr) << "Failed to create initial palette";
    // The destructor unregisters before anything else, so the callback never outlives this object.
    m_interactor->RegisterCallback([this] { OnPaletteChanged(); });
}

PaletteProvider::~PaletteProvider() {
    m_interactor->UnregisterCallback();
    m_interactor.reset();
    m_palette.reset();
    m_factory.reset();
}

IPalette* PaletteProvider::Palette() const {
    return m_palette.get();
}

void PaletteProvider::OnPaletteChanged() {
    try {
        const auto id = m_interactor->GetPaletteId();
        if (m_palette->Id() == id) {
            return;
        }
        auto palette = m_factory->GetPalette(id);
        if (!palette) {
            // The factory has already logged why.
            return;
        }
        m_palette = std::move(palette);
        emit PaletteChanged();
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "Failed to change palette, {} with result: {}", message,
               code);
    }
}

std::shared_ptr<PaletteProvider> CreatePaletteProvider(std::shared_ptr<IPaletteFactory> factory,
                                                       std::shared_ptr<IPaletteIdInteractor> interactor) {
    return std::make_shared<PaletteProvider>(std::move(factory), std::move(interactor));
}

}  // namespace vdi::uikit::utils::style
