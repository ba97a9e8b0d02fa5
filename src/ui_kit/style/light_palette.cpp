#include "style/light_palette.h"

namespace vdi::uikit::utils::style {

LightPalette::LightPalette()
    : TablePalette(PaletteId::Light, {
                                         {PaletteColor::BackgroundPrimary, "#FFFFFF"},
                                         {PaletteColor::BackgroundSubPrimary, "#F7F8FA"},
                                         {PaletteColor::BackgroundSecondary, "#EBEFF5"},
                                         {PaletteColor::BackgroundBase, "#D6212529"},
                                         {PaletteColor::ContentConstant, "#FFFFFF"},
                                         {PaletteColor::ContentPrimary, "#212529"},
                                         {PaletteColor::ContentSubPrimary, "#444647"},
                                         {PaletteColor::ContentSecondary, "#76787A"},
                                         {PaletteColor::ContentDisabled, "#BCBFC2"},
                                         {PaletteColor::ContentBorder, "#D2D4D6"},
                                         {PaletteColor::ContentBackground, "#E9EAEB"},
                                         {PaletteColor::SystemErrorPrimary, "#F22A41"},
                                     }) {}

}  // namespace vdi::uikit::utils::style
