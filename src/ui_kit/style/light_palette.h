#pragma once

#include "style/table_palette.h"

namespace vdi::uikit::utils::style {

// The kit's light palette, id 1: a TablePalette with the light values. No QObject parent; main thread.
class LightPalette final : public TablePalette {
    Q_OBJECT

public:
    LightPalette();
};

}  // namespace vdi::uikit::utils::style
