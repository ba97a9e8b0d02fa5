#include "support/check_failure_text.h"

#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>
#include <ui_kit/style/palette_provider.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <QMetaProperty>
#include <QSignalSpy>

#include <stdexcept>

namespace vdi::uikit::utils::style {
namespace {

using hos::logger::LogCaptureForTesting;
using hos::logger::LogLevel;
using vdi::uikit::testing::CheckFailureText;

struct Connected {
    std::shared_ptr<IPaletteIdInteractor> interactor;
    std::shared_ptr<PaletteProvider> provider;
};

// Set up as the application does: id first, then factory and provider.
Connected MakeConnected(PaletteId initial) {
    auto interactor = CreatePaletteIdInteractor();
    interactor->SetPaletteId(initial);
    auto provider = CreatePaletteProvider(CreatePaletteFactory(), interactor);
    return {interactor, provider};
}

// Serves the real palettes until told to fail, then throws from GetPalette.
class FailingFactory final : public IPaletteFactory {
public:
    std::shared_ptr<IPalette> GetPalette(PaletteId id) const override {
        if (failing) {
            throw std::runtime_error("factory broke");
        }
        return m_real->GetPalette(id);
    }

    bool failing = false;

private:
    std::shared_ptr<IPaletteFactory> m_real = CreatePaletteFactory();
};

TEST(PaletteProvider, ConstructionFailsWithNamedReasonForEachMissingPiece) {
    auto interactor = CreatePaletteIdInteractor();
    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(CheckFailureText([&] { PaletteProvider(nullptr, interactor); }), "PaletteFactory is nullptr");
    EXPECT_EQ(CheckFailureText([&] { PaletteProvider(nullptr, nullptr); }), "PaletteFactory is nullptr");
    EXPECT_EQ(CheckFailureText([&] { PaletteProvider(CreatePaletteFactory(), nullptr); }),
              "PaletteIdInteractor is nullptr");
    // None of the failed attempts left a callback behind.
    EXPECT_EQ(CheckFailureText([&] { interactor->RegisterCallback([] {}); }), "<no exception>");
}

TEST(PaletteProvider, ConstructionWithoutIdFailsWithTheInteractorsReason) {
    auto interactor = CreatePaletteIdInteractor();
    EXPECT_EQ(CheckFailureText([&] { PaletteProvider(CreatePaletteFactory(), interactor); }),
              "Palette id not set");
}

TEST(PaletteProvider, ConstructionWithUnknownIdFailsAndRegistersNothing) {
    LogCaptureForTesting capture;
    auto interactor = CreatePaletteIdInteractor();
    interactor->SetPaletteId(static_cast<PaletteId>(3));
    EXPECT_EQ(CheckFailureText([&] { PaletteProvider(CreatePaletteFactory(), interactor); }),
              "Failed to create initial palette");
    EXPECT_TRUE(capture.Contains("Palette for id: 3 not found"));
    EXPECT_EQ(CheckFailureText([&] { interactor->RegisterCallback([] {}); }), "<no exception>");
}

TEST(PaletteProvider, StartsWithThePaletteOfTheInteractorsIdAndTakesTheCallbackSlot) {
    const auto [interactor, provider] = MakeConnected(PaletteId::Dark);
    ASSERT_NE(provider->Palette(), nullptr);
    EXPECT_EQ(provider->Palette()->Id(), PaletteId::Dark);
    EXPECT_EQ(provider->property("palette").value<IPalette*>(), provider->Palette());
    EXPECT_EQ(CheckFailureText([&] { interactor->RegisterCallback([] {}); }),
              "callback was already registered!");
}

TEST(PaletteProvider, SameIdAgainEmitsNothing) {
    const auto [interactor, provider] = MakeConnected(PaletteId::Dark);
    QSignalSpy spy(provider.get(), &PaletteProvider::PaletteChanged);
    IPalette* before = provider->Palette();
    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(provider->Palette(), before);
}

TEST(PaletteProvider, ChangedIdEmitsExactlyOnceAndSwitchesThePalette) {
    const auto [interactor, provider] = MakeConnected(PaletteId::Dark);
    QSignalSpy spy(provider.get(), &PaletteProvider::PaletteChanged);
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(spy.count(), 1);
    ASSERT_NE(provider->Palette(), nullptr);
    EXPECT_EQ(provider->Palette()->Id(), PaletteId::Light);

    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(spy.count(), 2);
    EXPECT_EQ(provider->Palette()->Id(), PaletteId::Dark);
}

TEST(PaletteProvider, UnknownIdKeepsThePaletteAndALaterReturnToItEmitsNothing) {
    LogCaptureForTesting capture;
    const auto [interactor, provider] = MakeConnected(PaletteId::Dark);
    QSignalSpy spy(provider.get(), &PaletteProvider::PaletteChanged);
    IPalette* before = provider->Palette();

    interactor->SetPaletteId(static_cast<PaletteId>(3));
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(provider->Palette(), before);
    EXPECT_EQ(static_cast<int>(interactor->GetPaletteId()), 3);
    EXPECT_TRUE(capture.Contains("Palette for id: 3 not found"));
    EXPECT_EQ(capture.Count(LogLevel::Critical), 0u);

    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(provider->Palette(), before);
}

TEST(PaletteProvider, ThrowingFactoryIsLoggedAsCriticalAndKeepsTheOldPalette) {
    LogCaptureForTesting capture;
    auto factory = std::make_shared<FailingFactory>();
    auto interactor = CreatePaletteIdInteractor();
    interactor->SetPaletteId(PaletteId::Dark);
    PaletteProvider provider(factory, interactor);
    QSignalSpy spy(&provider, &PaletteProvider::PaletteChanged);

    factory->failing = true;
    EXPECT_NO_THROW(interactor->SetPaletteId(PaletteId::Light));
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(provider.Palette()->Id(), PaletteId::Dark);

    ASSERT_EQ(capture.Count(LogLevel::Critical), 1u);
    const auto records = capture.Records();
    const auto& record = records.back();
    EXPECT_EQ(record.function, "OnPaletteChanged");
    EXPECT_EQ(record.message.rfind("Failed to change palette, ", 0), 0u) << record.message;
    EXPECT_NE(record.message.find("factory broke"), std::string::npos) << record.message;
    // std::exception is reported as "Unspecified error", 0x8000004B.
    EXPECT_NE(record.message.find(" with result: " + std::to_string(static_cast<int>(0x8000004Bu))),
              std::string::npos)
        << record.message;

    factory->failing = false;
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(provider.Palette()->Id(), PaletteId::Light);
}

TEST(PaletteProvider, DestructionFreesTheCallbackSlotAndReleasesTheFactory) {
    auto interactor = CreatePaletteIdInteractor();
    interactor->SetPaletteId(PaletteId::Dark);
    std::weak_ptr<IPaletteFactory> factory;
    {
        auto shared = CreatePaletteFactory();
        factory = shared;
        auto provider = CreatePaletteProvider(std::move(shared), interactor);
        EXPECT_FALSE(factory.expired());
    }
    EXPECT_TRUE(factory.expired());
    // A set after the provider is gone must not reach it.
    EXPECT_NO_THROW(interactor->SetPaletteId(PaletteId::Light));
    EXPECT_EQ(CheckFailureText([&] { interactor->RegisterCallback([] {}); }), "<no exception>");
}

TEST(PaletteProvider, PalettePropertyIsReadOnlyAndNotifiedByPaletteChanged) {
    const QMetaObject& meta = PaletteProvider::staticMetaObject;
    EXPECT_EQ(meta.propertyCount() - meta.propertyOffset(), 1);
    const int index = meta.indexOfProperty("palette");
    ASSERT_GE(index, 0);
    const QMetaProperty property = meta.property(index);
    EXPECT_FALSE(property.isWritable());
    EXPECT_EQ(QByteArray(property.notifySignal().name()), "PaletteChanged");
    EXPECT_EQ(property.metaType(), QMetaType::fromType<IPalette*>());
}

}  // namespace
}  // namespace vdi::uikit::utils::style
