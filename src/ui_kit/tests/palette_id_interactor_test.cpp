#include "support/check_failure_text.h"

#include <ui_kit/style/i_palette_id_interactor.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <thread>

namespace vdi::uikit::utils::style {
namespace {

using hos::logger::LogCaptureForTesting;
using hos::logger::LogLevel;
using vdi::uikit::testing::CheckFailureText;

TEST(PaletteIdInteractor, GetPaletteIdThrowsBeforeAnyIdIsSet) {
    const auto interactor = CreatePaletteIdInteractor();
    EXPECT_EQ(CheckFailureText([&] { interactor->GetPaletteId(); }), "Palette id not set");
}

TEST(PaletteIdInteractor, GetPaletteIdReturnsTheLastIdSetEvenAnUnknownOne) {
    const auto interactor = CreatePaletteIdInteractor();
    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(interactor->GetPaletteId(), PaletteId::Dark);
    interactor->SetPaletteId(static_cast<PaletteId>(0));
    EXPECT_EQ(static_cast<int>(interactor->GetPaletteId()), 0);
    interactor->SetPaletteId(static_cast<PaletteId>(0xFFFF));
    EXPECT_EQ(static_cast<int>(interactor->GetPaletteId()), 0xFFFF);
}

TEST(PaletteIdInteractor, SetPaletteIdWithoutCallbackOnlyStoresAndLogsAtDebug) {
    LogCaptureForTesting capture;
    const auto interactor = CreatePaletteIdInteractor();
    interactor->SetPaletteId(PaletteId::Dark);
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, LogLevel::Debug);
    EXPECT_EQ(records[0].message, "No callback, set parameter only");
    EXPECT_EQ(records[0].function, "SetPaletteId");
}

TEST(PaletteIdInteractor, CallbackRunsOnEverySetEvenWithAnUnchangedId) {
    LogCaptureForTesting capture;
    const auto interactor = CreatePaletteIdInteractor();
    int calls = 0;
    PaletteId seen{};
    interactor->RegisterCallback([&] {
        ++calls;
        seen = interactor->GetPaletteId();
    });
    interactor->SetPaletteId(PaletteId::Dark);
    interactor->SetPaletteId(PaletteId::Dark);
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(seen, PaletteId::Light);
    EXPECT_FALSE(capture.Contains("No callback"));
}

TEST(PaletteIdInteractor, SecondRegisterThrowsAndKeepsTheFirstCallback) {
    const auto interactor = CreatePaletteIdInteractor();
    int first = 0;
    int second = 0;
    interactor->RegisterCallback([&] { ++first; });
    EXPECT_EQ(CheckFailureText([&] { interactor->RegisterCallback([&] { ++second; }); }),
              "callback was already registered!");
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
}

TEST(PaletteIdInteractor, RegisterAfterUnregisterSucceedsAndOnlyTheNewCallbackRuns) {
    const auto interactor = CreatePaletteIdInteractor();
    int first = 0;
    int second = 0;
    interactor->RegisterCallback([&] { ++first; });
    interactor->UnregisterCallback();
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(CheckFailureText([&] { interactor->RegisterCallback([&] { ++second; }); }), "<no exception>");
    interactor->SetPaletteId(PaletteId::Light);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(PaletteIdInteractor, UnregisterWithoutCallbackDoesNothing) {
    LogCaptureForTesting capture;
    const auto interactor = CreatePaletteIdInteractor();
    interactor->UnregisterCallback();
    interactor->UnregisterCallback();
    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(interactor->GetPaletteId(), PaletteId::Dark);
    EXPECT_TRUE(capture.Contains("No callback, set parameter only"));
}

TEST(PaletteIdInteractor, CallbackMayUnregisterAndReplaceItselfWhileRunning) {
    const auto interactor = CreatePaletteIdInteractor();
    int replacementCalls = 0;
    int originalCalls = 0;
    interactor->RegisterCallback([&] {
        ++originalCalls;
        interactor->UnregisterCallback();
        interactor->RegisterCallback([&] { ++replacementCalls; });
    });
    interactor->SetPaletteId(PaletteId::Light);
    interactor->SetPaletteId(PaletteId::Dark);
    EXPECT_EQ(originalCalls, 1);
    EXPECT_EQ(replacementCalls, 1);
}

TEST(PaletteIdInteractor, CallbackRunsOnTheThreadThatSetsTheId) {
    const auto interactor = CreatePaletteIdInteractor();
    std::thread::id callbackThread;
    interactor->RegisterCallback([&] { callbackThread = std::this_thread::get_id(); });
    std::thread::id setterThread;
    std::thread setter([&] {
        setterThread = std::this_thread::get_id();
        interactor->SetPaletteId(PaletteId::Light);
    });
    setter.join();
    EXPECT_EQ(callbackThread, setterThread);
    EXPECT_NE(callbackThread, std::this_thread::get_id());
    EXPECT_EQ(interactor->GetPaletteId(), PaletteId::Light);
}

}  // namespace
}  // namespace vdi::uikit::utils::style
