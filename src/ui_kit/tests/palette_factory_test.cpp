#include "style/palette_factory.h"

#include <ui_kit/style/i_palette_factory.h>

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

namespace vdi::uikit::utils::style {
namespace {

using hos::logger::LogCaptureForTesting;
using hos::logger::LogLevel;

TEST(PaletteFactory, GetPaletteTwiceForOneIdReturnsTheSameObject) {
    const auto factory = CreatePaletteFactory();
    const auto first = factory->GetPalette(PaletteId::Dark);
    const auto second = factory->GetPalette(PaletteId::Dark);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(first->Id(), PaletteId::Dark);
}

TEST(PaletteFactory, LightAndDarkIdsBuildDistinctPalettesOfTheirOwnId) {
    const auto factory = CreatePaletteFactory();
    const auto light = factory->GetPalette(PaletteId::Light);
    const auto dark = factory->GetPalette(PaletteId::Dark);
    ASSERT_NE(light, nullptr);
    ASSERT_NE(dark, nullptr);
    EXPECT_NE(light.get(), dark.get());
    EXPECT_EQ(light->Id(), PaletteId::Light);
    EXPECT_EQ(dark->Id(), PaletteId::Dark);
    EXPECT_EQ(factory->GetPalette(PaletteId::Light).get(), light.get());
}

TEST(PaletteFactory, UnknownIdWarnsOnEveryCallAndLeavesNoEntry) {
    LogCaptureForTesting capture;
    PaletteFactory factory;
    ASSERT_NE(factory.GetPalette(PaletteId::Dark), nullptr);

    EXPECT_EQ(factory.GetPalette(static_cast<PaletteId>(3)), nullptr);
    EXPECT_EQ(factory.CachedEntryCountForTesting(), 1u);
    EXPECT_EQ(factory.GetPalette(static_cast<PaletteId>(3)), nullptr);
    EXPECT_EQ(factory.CachedEntryCountForTesting(), 1u);

    EXPECT_EQ(capture.Count(LogLevel::Warning), 2u);
    const auto records = capture.Records();
    ASSERT_FALSE(records.empty());
    EXPECT_EQ(records.back().message, "Palette for id: 3 not found");
    EXPECT_EQ(records.back().function, "CreatePaletteById");
    EXPECT_EQ(records.back().level, LogLevel::Warning);
}

}  // namespace
}  // namespace vdi::uikit::utils::style
