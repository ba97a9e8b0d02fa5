#include "style/palette_factory.h"

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

namespace vdi::uikit::utils::style {
namespace {

using hos::logger::LogLevel;

TEST(PaletteFactory, EachKnownIdIsBuiltOnceAndShared) {
    const auto factory = CreatePaletteFactory();
    const auto dark = factory->GetPalette(PaletteId::Dark);
    const auto light = factory->GetPalette(PaletteId::Light);
    ASSERT_NE(dark, nullptr);
    ASSERT_NE(light, nullptr);
    EXPECT_NE(dark, light);
    EXPECT_EQ(factory->GetPalette(PaletteId::Dark), dark);
    EXPECT_EQ(factory->GetPalette(PaletteId::Light), light);
}

TEST(PaletteFactory, UnknownIdWarnsOnEveryCallAndLeavesNoEntry) {
    hos::logger::LogCaptureForTesting capture;
    PaletteFactory factory;
    ASSERT_NE(factory.GetPalette(PaletteId::Dark), nullptr);
    for (int call = 1; call <= 2; ++call) {
        EXPECT_EQ(factory.GetPalette(static_cast<PaletteId>(3)), nullptr);
        EXPECT_EQ(factory.CachedEntryCountForTesting(), 1u);
        EXPECT_EQ(capture.Count(LogLevel::Warning), static_cast<std::size_t>(call));
    }
    const auto records = capture.Records();
    EXPECT_EQ(records.back().message, "Palette for id: 3 not found");
    EXPECT_EQ(records.back().function, "CreatePaletteById");
}

}  // namespace
}  // namespace vdi::uikit::utils::style
