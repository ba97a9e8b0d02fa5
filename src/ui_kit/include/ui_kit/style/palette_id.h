#pragma once

#include <cstdint>

namespace vdi::uikit::utils::style {

// Identifies one palette of the UI kit. Log lines print it as a plain number.
enum class PaletteId : std::uint16_t {
    Light = 1,
    Dark = 2,
};

}  // namespace vdi::uikit::utils::style
