#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>
#include <ui_kit/style/palette_provider.h>

#include <diagnostics/check_failure_text_for_testing.h>
#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <stdexcept>

namespace vdi::uikit::utils::style {
namespace {

using hca::testing::CheckFailureTextForTesting;
using hos::logger::LogLevel;

std::shared_ptr<IPaletteIdInteractor> InteractorWithId(int id) {
    auto interactor = CreatePaletteIdInteractor();
    interactor->SetPaletteId(static_cast<PaletteId>(id));
    return interactor;
}

// Serves the real palettes until told to fail, then throws from GetPalette.
class FailingFactory final : public IPaletteFactory {
public:
    std::shared_ptr<IPalette> GetPalette(PaletteId id) const override {
        if (failing) throw std::runtime_error("factory broke");
        return m_real->GetPalette(id);
    }
    bool failing = false;

private:
    std::shared_ptr<IPaletteFactory> m_real = CreatePaletteFactory();
};

TEST(PaletteProvider, ConstructionFailsWithNamedReasonAndLeavesTheCallbackSlotFree) {
    hos::logger::LogCaptureForTesting capture;
    EXPECT_EQ(CheckFailureTextForTesting([&] { PaletteProvider(nullptr, nullptr); }),
              "PaletteFactory is nullptr");
    EXPECT_EQ(CheckFailureTextForTesting([&] { PaletteProvider(CreatePaletteFactory(), nullptr); }),
              "PaletteIdInteractor is nullptr");
    EXPECT_EQ(CheckFailureTextForTesting(
                  [&] { PaletteProvider(CreatePaletteFactory(), CreatePaletteIdInteractor()); }),
              "Palette id not set");
    const auto unknown = InteractorWithId(3);
    EXPECT_EQ(CheckFailureTextForTesting([&] { PaletteProvider(CreatePaletteFactory(), unknown); }),
              "Failed to create initial palette");
    EXPECT_EQ(CheckFailureTextForTesting([&] { unknown->RegisterCallback([] {}); }), "<no exception>");
}

TEST(PaletteProvider, SignalsOnlyWhenTheIdNamesAnotherKnownPalette) {
    hos::logger::LogCaptureForTesting capture;
    const auto interactor = InteractorWithId(2);
    const auto provider = CreatePaletteProvider(CreatePaletteFactory(), interactor);
    EXPECT_EQ(CheckFailureTextForTesting([&] { interactor->RegisterCallback([] {}); }),
              "callback was already registered!");
    QSignalSpy spy(provider.get(), &PaletteProvider::PaletteChanged);
    IPalette* const dark = provider->Palette();
    ASSERT_NE(dark, nullptr);
    EXPECT_EQ(dark->Id(), PaletteId::Dark);
    EXPECT_EQ(provider->property("palette").value<IPalette*>(), dark);

    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(spy.count(), 0);

    interactor->SetPaletteId(static_cast<PaletteId>(3));
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(provider->Palette(), dark);
    EXPECT_TRUE(capture.Contains("Palette for id: 3 not found"));
    interactor->SetPaletteId(PaletteId::Dark);  // the palette never left 2
    EXPECT_EQ(spy.count(), 0);

    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(provider->Palette()->Id(), PaletteId::Light);
    EXPECT_EQ(provider->property("palette").value<IPalette*>(), provider->Palette());
    EXPECT_EQ(capture.Count(LogLevel::Critical), 0u);
}

TEST(PaletteProvider, ThrowingFactoryIsLoggedAsCriticalAndKeepsTheOldPalette) {
    hos::logger::LogCaptureForTesting capture;
    auto factory = std::make_shared<FailingFactory>();
    const auto interactor = InteractorWithId(2);
    PaletteProvider provider(factory, interactor);
    QSignalSpy spy(&provider, &PaletteProvider::PaletteChanged);

    factory->failing = true;
    EXPECT_NO_THROW(interactor->SetPaletteId(PaletteId::Light));
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(provider.Palette()->Id(), PaletteId::Dark);
    ASSERT_EQ(capture.Count(LogLevel::Critical), 1u);
    const auto record = capture.Records().back();
    EXPECT_EQ(record.function, "OnPaletteChanged");
    // A std::exception is reported with its type, as "Unspecified error", 0x8000004B.
    EXPECT_EQ(record.message, "Failed to change palette, std::exception: factory broke with result: " +
                                  std::to_string(static_cast<int>(0x8000004Bu)));

    factory->failing = false;
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(spy.count(), 1);
}

TEST(PaletteProvider, DestructionFreesTheCallbackSlotAndReleasesTheFactory) {
    const auto interactor = InteractorWithId(2);
    std::weak_ptr<IPaletteFactory> factory;
    {
        auto shared = CreatePaletteFactory();
        factory = shared;
        const auto provider = CreatePaletteProvider(std::move(shared), interactor);
    }
    EXPECT_TRUE(factory.expired());
    EXPECT_NO_THROW(interactor->SetPaletteId(PaletteId::Light));
    EXPECT_EQ(CheckFailureTextForTesting([&] { interactor->RegisterCallback([] {}); }), "<no exception>");
}

}  // namespace
}  // namespace vdi::uikit::utils::style
