#include "style/dark_palette.h"

namespace vdi::uikit::utils::style {

DarkPalette::DarkPalette()
    : TablePalette(PaletteId::Dark, {
                                        {PaletteColor::BackgroundPrimary, "#050505"},
                                        {PaletteColor::BackgroundSubPrimary, "#141414"},
                                        {PaletteColor::BackgroundSecondary, "#242424"},
                                        {PaletteColor::BackgroundBase, "#D6212529"},
                                        {PaletteColor::ContentConstant, "#FFFFFF"},
                                        {PaletteColor::ContentPrimary, "#FFFFFF"},
                                        {PaletteColor::ContentSubPrimary, "#B2FFFFFF"},
                                        {PaletteColor::ContentSecondary, "#8FFFFFFF"},
                                        {PaletteColor::ContentDisabled, "#57FFFFFF"},
                                        {PaletteColor::ContentBorder, "#29FFFFFF"},
                                        {PaletteColor::ContentBackground, "#1FFFFFFF"},
                                        {PaletteColor::SystemErrorPrimary, "#F22A41"},
                                        {PaletteColor::SystemWarningPrimary, "#F3BD3D"},
                                        {PaletteColor::PurplePrimary, "#8C8CFF"},
                                        {PaletteColor::PurpleSubPrimary, "#9C9CFF"},
                                        {PaletteColor::PurpleSecondary, "#ABABFF"},
                                        {PaletteColor::PurpleDisabled, "#478C8CFF"},
                                        {PaletteColor::PurpleBorder, "#338C8CFF"},
                                        {PaletteColor::PurpleBackground, "#1F8C8CFF"},
                                        {PaletteColor::SystemWarningBackground, "#29F3BD3D"},
                                    }) {}

}  // namespace vdi::uikit::utils::style
