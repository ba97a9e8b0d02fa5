#include <ui_kit/style/i_palette_id_interactor.h>

#include <diagnostics/check_failure_text_for_testing.h>
#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <thread>

namespace vdi::uikit::utils::style {
namespace {

using hca::testing::CheckFailureTextForTesting;
using hos::logger::LogLevel;

TEST(PaletteIdInteractor, WithoutCallbackGetThrowsUntilSetAndSetOnlyStoresAndLogs) {
    hos::logger::LogCaptureForTesting capture;
    const auto interactor = CreatePaletteIdInteractor();
    EXPECT_EQ(CheckFailureTextForTesting([&] { interactor->GetPaletteId(); }), "Palette id not set");
    interactor->UnregisterCallback();  // with none set: nothing happens
    interactor->SetPaletteId(static_cast<PaletteId>(0xFFFF));
    EXPECT_EQ(static_cast<int>(interactor->GetPaletteId()), 0xFFFF);
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, LogLevel::Debug);
    EXPECT_EQ(records[0].message, "No callback, set parameter only");
    EXPECT_EQ(records[0].function, "SetPaletteId");
}

TEST(PaletteIdInteractor, OneCallbackSlotRunsOnEverySetEvenWithAnUnchangedId) {
    hos::logger::LogCaptureForTesting capture;
    const auto interactor = CreatePaletteIdInteractor();
    int first = 0;
    int second = 0;
    PaletteId seen{};
    interactor->RegisterCallback([&] {
        ++first;
        seen = interactor->GetPaletteId();
    });
    EXPECT_EQ(CheckFailureTextForTesting([&] { interactor->RegisterCallback([&] { ++second; }); }),
              "callback was already registered!");
    interactor->SetPaletteId(PaletteId::Dark);
    interactor->SetPaletteId(PaletteId::Dark);
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(seen, PaletteId::Light);
    EXPECT_FALSE(capture.Contains("No callback"));

    interactor->UnregisterCallback();
    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(CheckFailureTextForTesting([&] { interactor->RegisterCallback([&] { ++second; }); }),
              "<no exception>");
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(second, 1);
}

TEST(PaletteIdInteractor, CallbackMayReplaceItselfAndRunsOnTheSettersThread) {
    const auto interactor = CreatePaletteIdInteractor();
    int replacementCalls = 0;
    std::thread::id callbackThread;
    interactor->RegisterCallback([&] {
        callbackThread = std::this_thread::get_id();
        interactor->UnregisterCallback();
        interactor->RegisterCallback([&] { ++replacementCalls; });
    });
    std::thread::id setterThread;
    std::thread setter([&] {
        setterThread = std::this_thread::get_id();
        interactor->SetPaletteId(PaletteId::Light);
    });
    setter.join();
    EXPECT_EQ(callbackThread, setterThread);
    EXPECT_EQ(replacementCalls, 0);
    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(replacementCalls, 1);
}

}  // namespace
}  // namespace vdi::uikit::utils::style
