#pragma once

#include "style/table_palette.h"

namespace vdi::uikit::utils::style {

// The kit's dark palette, id 2: a TablePalette with the dark values. No QObject parent; main thread.
class DarkPalette final : public TablePalette {
    Q_OBJECT

public:
    DarkPalette();
};

}  // namespace vdi::uikit::utils::style
